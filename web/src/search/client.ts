import workerText from "worker-text";
import type { Design } from "../data/design";
import type { Reply, Request } from "./messages";
import type { Query } from "./query";
import type { Hit } from "./walk";

export interface Listener {
  hits(hits: Hit[]): void;
  done(isComplete: boolean): void;
  fault(message: string): void;
}

/** Searches in a worker, one query at a time: the latest. */
export class SearchClient {
  private readonly worker: Worker;
  private id = 0;
  private listener?: Listener;

  constructor(design: Design) {
    this.worker = new Worker(URL.createObjectURL(new Blob([workerText], { type: "text/javascript" })));
    this.worker.onmessage = ({ data }: MessageEvent<Reply>) => {
      if (data.id !== this.id || !this.listener) {
        return;
      }
      switch (data.what) {
        case "hits":
          this.listener.hits(data.hits);
          break;
        case "done":
          this.listener.done(data.isComplete);
          break;
        case "fault":
          this.listener.fault(data.message);
      }
    };
    this.post({ what: "design", head: design.head, modules: design.moduleBytes! });
  }

  search(query: Query, limit: number, listener: Listener): void {
    this.listener = listener;
    this.post({ what: "search", id: ++this.id, query, limit });
  }

  more(limit: number): void {
    this.post({ what: "more", id: this.id, limit });
  }

  stop(): void {
    ++this.id;
    this.post({ what: "stop" });
  }

  private post(request: Request): void {
    this.worker.postMessage(request);
  }
}
