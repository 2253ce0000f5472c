// -----------------------------------------------------------------------------
// trng: random bits from two ring oscillators.
//
// The rings are combinational loops on purpose. One has an enable, the other
// always runs; their sum is sampled and folded into a word. The module is marked
// protected, since nobody may look inside.
// -----------------------------------------------------------------------------
`default_nettype none

(* \protected = 1 *)
module trng (
    input  wire        clk,
    input  wire        rst_ni,
    input  wire        enable_i,
    output wire        ring_o,
    output reg  [15:0] word_o
);

    reg enable_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            enable_q <= 1'b0;
        else
            enable_q <= enable_i;

    (* keep *) wire       ring_gated;       // one NAND gate fed by its own output
    (* keep *) wire [2:0] ring_free;

    assign ring_gated = ~(ring_gated & enable_q);

    genvar i;
    generate
        for (i = 0; i < 3; i = i + 1) begin : g_free
            ring_stage u_stage (
                .in_i  (ring_free[(i + 2) % 3]),
                .out_o (ring_free[i])
            );
        end
    endgenerate

    assign ring_o = ring_free[2];

    (* async_reg = "TRUE" *)
    reg [1:0] sample_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            sample_q <= 2'b00;
            word_o   <= 16'h0000;
        end else begin
            sample_q <= {sample_q[0], ring_gated ^ ring_free[2]};
            word_o   <= {word_o[14:0], word_o[15] ^ sample_q[1]};
        end

endmodule

`default_nettype wire
