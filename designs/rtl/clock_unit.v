// -----------------------------------------------------------------------------
// clock_unit: makes the clocks and their resets.
//
//   clk_sys_i   comes from a pin and is used as it is
//   clk_div_o   clk_sys_i divided by 8, for the timers
//   clk_idle_o  clk_sys_i while the processor side is awake (gated in the buffer)
//   clk_link_o  the synthesizer's output behind a clock buffer
// -----------------------------------------------------------------------------
`default_nettype none

module clock_unit (
    input  wire       clk_sys_i,
    input  wire       clk_adc_i,
    input  wire       clk_ref_i,
    input  wire       rst_async_ni,
    input  wire       awake_i,
    input  wire       pll_off_i,
    input  wire [0:3] pll_trim_i,

    output wire       clk_div_o,
    output wire       clk_idle_o,
    output wire       clk_link_o,
    output wire       pll_locked_o,

    output wire       rst_sys_no,
    output wire       rst_div_no,
    output wire       rst_adc_no,
    output wire       rst_link_no
);

    wire clk_pll;

    analog_pll #(.MULTIPLY(5), .BAND("HIGH")) u_pll (
        .ref_i        (clk_ref_i),
        .power_down_i (pll_off_i),
        .trim_i       (pll_trim_i),
        .clk_o        (clk_pll),
        .locked_o     (pll_locked_o)
    );

    clock_buffer u_pll_buffer (
        .clk_i (clk_pll),
        .clk_o (clk_link_o)
    );

    clock_divider #(.DIVIDE(8)) u_divider (
        .clk_i     (clk_sys_i),
        .rst_ni    (rst_sys_no),
        .clk_div_o (clk_div_o),
        .tick_o    ()
    );

    clock_gate #(.STYLE("BUFFER")) u_idle_gate (
        .clk_i    (clk_sys_i),
        .enable_i (awake_i),
        .clk_o    (clk_idle_o)
    );

    reset_sync u_rst_sys (
        .clk          (clk_sys_i),
        .rst_async_ni (rst_async_ni),
        .rst_no       (rst_sys_no)
    );

    reset_sync #(.STAGES(3)) u_rst_div (
        .clk          (clk_div_o),
        .rst_async_ni (rst_sys_no),
        .rst_no       (rst_div_no)
    );

    reset_sync u_rst_adc (
        .clk          (clk_adc_i),
        .rst_async_ni (rst_async_ni),
        .rst_no       (rst_adc_no)
    );

    reset_sync #(.STAGES(3)) u_rst_link (
        .clk          (clk_link_o),
        .rst_async_ni (rst_async_ni & pll_locked_o),
        .rst_no       (rst_link_no)
    );

endmodule

`default_nettype wire
