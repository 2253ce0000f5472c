import { Design } from "../data/design";
import type { Reply, Request } from "./messages";
import { type Hit, search } from "./walk";

/** Time, in milliseconds, after which found names are sent on and messages are looked at. */
const SLICE = 25;

let design: Design | undefined;
let walk: Iterator<Hit | undefined> | undefined;
let current = 0;

const send = (reply: Reply): void => (self as unknown as { postMessage(reply: Reply): void }).postMessage(reply);

/** Gives waiting messages their turn; timers would wait for milliseconds each time. */
const channel = new MessageChannel();
let resume: () => void = () => {};
channel.port1.onmessage = () => resume();
const pause = (): Promise<void> =>
  new Promise((done) => {
    resume = done;
    channel.port2.postMessage(null);
  });

async function run(id: number, limit: number): Promise<void> {
  try {
    let hits: Hit[] = [];
    let found = 0;
    let sliceEnd = performance.now() + SLICE;
    for (;;) {
      if (found === limit) {
        send({ what: "hits", id, hits });
        send({ what: "done", id, isComplete: false });
        return;
      }
      const step = walk!.next();
      if (step.done) {
        send({ what: "hits", id, hits });
        send({ what: "done", id, isComplete: true });
        return;
      }
      if (step.value) {
        hits.push(step.value);
        ++found;
      }
      if ((found === 1 && hits.length === 1) || performance.now() > sliceEnd) {
        if (hits.length > 0) {
          send({ what: "hits", id, hits });
          hits = [];
        }
        await pause();
        if (current !== id) {
          return;
        }
        sliceEnd = performance.now() + SLICE;
      }
    }
  } catch (fault) {
    send({ what: "fault", id, message: fault instanceof Error ? fault.message : String(fault) });
  }
}

/** Reads the contents of modules before they are asked for, the top first. */
async function warmUp(all: Design): Promise<void> {
  for (let module = all.top; module >= 0; --module) {
    all.body(module);
    await new Promise((done) => setTimeout(done));
  }
}

self.onmessage = ({ data }: MessageEvent<Request>) => {
  switch (data.what) {
    case "design":
      design = new Design(data.head, data.modules);
      void warmUp(design);
      break;
    case "search":
      current = data.id;
      walk = search(design!, data.query);
      void run(data.id, data.limit);
      break;
    case "more":
      current = data.id;
      void run(data.id, data.limit);
      break;
    case "stop":
      current = 0;
  }
};
