import { h, s } from "./dom";

/** Switches between dark and light; begins as the system has it. */
export function themeButton(): HTMLButtonElement {
  const system = matchMedia("(prefers-color-scheme: dark)");
  const isDark = (): boolean => (document.documentElement.dataset["theme"] ?? (system.matches ? "dark" : "light")) === "dark";
  const button = h(
    "button",
    {
      class: "theme",
      "aria-label": "Dark colours",
      click: () => {
        document.documentElement.dataset["theme"] = isDark() ? "light" : "dark";
        show();
      },
    },
    s(
      "svg",
      { width: 16, height: 16, viewBox: "0 0 16 16", "aria-hidden": "true", class: "icon" },
      s("circle", { cx: 8, cy: 8, r: 6.5 }),
      s("path", { class: "half", d: "M8 1.5a6.5 6.5 0 0 1 0 13z" }),
    ),
  );
  const show = (): void => button.setAttribute("aria-pressed", String(isDark()));
  system.addEventListener("change", show);
  show();
  return button;
}
