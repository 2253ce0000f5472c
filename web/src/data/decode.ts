/** Takes the parts of the data out of the page. */

/** The bytes of a text in base64. */
function bytesOf(text: string): Uint8Array<ArrayBuffer> {
  const native = Uint8Array as unknown as { fromBase64?: (text: string) => Uint8Array<ArrayBuffer> };
  if (native.fromBase64) {
    return native.fromBase64(text);
  }
  const binary = atob(text);
  const bytes = new Uint8Array(binary.length);
  for (let at = 0; at < binary.length; ++at) {
    bytes[at] = binary.charCodeAt(at);
  }
  return bytes;
}

/** Takes the text of an element out of the page, so that it is held once. */
function takeText(id: string): string {
  const element = document.getElementById(id);
  const text = element?.textContent ?? "";
  element?.remove();
  if (text === "") {
    throw new Error(`the page holds no data (${id}); was it written to its end?`);
  }
  return text;
}

/** The bytes of a part before it was compressed. */
export async function takePart(id: string): Promise<Uint8Array<ArrayBuffer>> {
  if (typeof DecompressionStream === "undefined") {
    throw new Error("this browser cannot decompress data; a newer one can");
  }
  const stream = new Blob([bytesOf(takeText(id))]).stream().pipeThrough(new DecompressionStream("gzip"));
  return new Uint8Array(await new Response(stream).arrayBuffer());
}

export function jsonOf<T>(bytes: Uint8Array): T {
  return JSON.parse(new TextDecoder().decode(bytes)) as T;
}
