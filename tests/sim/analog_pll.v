// The synthesizer, with the test bench for its oscillator: its clock is one of those that alternate one at a time.
`timescale 1ns / 1ps

module analog_pll #(
    parameter MULTIPLY = 4,
    parameter BAND     = "LOW"
) (
    input  wire       power_down_i,
    input  wire [0:3] trim_i,
    input  wire       ref_i,
    output wire       clk_o,
    output wire       locked_o
);

    assign clk_o    = bench.pll;
    assign locked_o = 1'b1;

endmodule
