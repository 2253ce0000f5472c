// -----------------------------------------------------------------------------
// analog_pll: frequency synthesizer, delivered as a hard macro.
//
// Only its pins are known to the digital side. Synthesis keeps it as a black
// box; simulation uses a simple model that follows the reference.
// -----------------------------------------------------------------------------
`default_nettype none

(* blackbox *)
module analog_pll #(
    parameter MULTIPLY = 4,
    parameter BAND     = "LOW"
) (
    input  wire       power_down_i,
    input  wire [0:3] trim_i,       // fine tuning, bit 0 is the coarsest step
    input  wire       ref_i,
    output wire       clk_o,
    output wire       locked_o
);

`ifdef SIMULATION
    assign clk_o    = ref_i & ~power_down_i;
    assign locked_o = ~power_down_i & ~(&trim_i);
`endif

endmodule

`default_nettype wire
