import { h } from "./ui/dom";
import { App } from "./ui/app";

const root = document.getElementById("app")!;

App.start(root).then(
  () => performance.mark("shown"),
  (fault: unknown) => {
    const message = fault instanceof Error ? fault.message : String(fault);
    root.replaceChildren(h("main", { class: "loading" }, h("h1", {}, "This page cannot be shown"), h("p", { role: "alert" }, message)));
  },
);
