// A netlist whose names try to get out of where they are shown.
export const SCRIPT = "</script><script>window.broken=1</script>";
export const MARKUP = `"'><img src=x onerror="window.broken=1">`;
export const CONTROL = "a\u0001b\u001b[31mc\n\t\u202ed\u2066e";
export const LONG = `long_${"x".repeat(10_000)}`;
export const NAMES = [SCRIPT, MARKUP, CONTROL, LONG, "<!--<script>", "${1+1}{{7*7}}", "__proto__", "constructor", "a/b", "%2F%zz", "*?[x]", " ", "#/inst/x"];

/** As yosys writes it: a top with nets of all those names, an instance of that name for each, and a module for each. */
export function hostileDesign() {
  const port = (direction, bits) => ({ direction, bits });
  const modules = {};
  const cells = {};
  const netnames = [["clk", { hide_name: 0, bits: [2], attributes: { src: `${SCRIPT}:1` } }]];
  NAMES.forEach((name, at) => {
    const [input, result] = [3 + 2 * at, 4 + 2 * at];
    modules[`m${name}`] = {
      attributes: { src: `${MARKUP}:${at + 1}` },
      ports: { clk: port("input", [2]), [name]: port("input", [3]), q: port("output", [4]) },
      cells: {
        [`$ff${name}`]: {
          hide_name: 0,
          type: "$dff",
          parameters: { CLK_POLARITY: "1", WIDTH: "00000000000000000000000000000001" },
          attributes: {},
          port_directions: { CLK: "input", D: "input", Q: "output" },
          connections: { CLK: [2], D: [3], Q: [4] },
        },
      },
      netnames: {
        clk: { hide_name: 0, bits: [2], attributes: { src: "x.v:1" } },
        [name]: { hide_name: 0, bits: [3], attributes: { src: "x.v:1" } },
        q: { hide_name: 0, bits: [4], attributes: { src: "x.v:2" } },
      },
    };
    cells[`i${name}`] = {
      hide_name: 0,
      type: `m${name}`,
      parameters: {},
      attributes: { src: "x.v:3" },
      port_directions: { clk: "input", [name]: "input", q: "output" },
      connections: { clk: [2], [name]: [input], q: [result] },
    };
    netnames.push([name, { hide_name: 0, bits: [input], attributes: { src: "x.v:4" } }]);
    netnames.push([`q${name}`, { hide_name: 0, bits: [result], attributes: { src: "x.v:5" } }]);
  });
  modules[`top${SCRIPT}`] = {
    attributes: { top: "00000000000000000000000000000001", src: "x.v:9" },
    ports: { clk: port("input", [2]) },
    cells,
    // Entries make a member of its own of __proto__, too.
    netnames: Object.fromEntries(netnames),
  };
  return JSON.stringify({ creator: MARKUP, modules });
}
