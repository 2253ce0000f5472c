// -----------------------------------------------------------------------------
// timer_bank: COUNT timers behind one bus slave; offset k loads timer k,
// offset 15 reads which have expired.
// -----------------------------------------------------------------------------
`default_nettype none

module timer_bank #(
    parameter COUNT = 4
) (
    input  wire             clk,
    input  wire             rst_ni,
    input  wire             clk_slow,
    input  wire             rst_slow_ni,

    input  wire             sel_i,
    input  wire             we_i,
    input  wire [3:0]       addr_i,
    input  wire [15:0]      wdata_i,
    output reg  [15:0]      rdata_o,

    output wire [0:COUNT-1] expired_o
);

    genvar t;
    generate
        for (t = 0; t < COUNT; t = t + 1) begin : g_timer
            timer #(.WIDTH(12)) u_timer (
                .clk         (clk),
                .rst_ni      (rst_ni),
                .load_i      (sel_i & we_i & (addr_i == t)),
                .reload_i    (wdata_i[11:0]),
                .clk_slow    (clk_slow),
                .rst_slow_ni (rst_slow_ni),
                .expired_o   (expired_o[t])
            );
        end
    endgenerate

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            rdata_o <= 16'h0000;
        else if (sel_i)
            rdata_o <= {{16-COUNT{1'b0}}, expired_o};

endmodule

`default_nettype wire
