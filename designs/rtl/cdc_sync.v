// -----------------------------------------------------------------------------
// cdc_sync: brings WIDTH independent bits into the domain of clk.
//
// The bits may arrive in different cycles; use a FIFO or Gray code for words.
// -----------------------------------------------------------------------------
`default_nettype none

module cdc_sync #(
    parameter WIDTH  = 1,
    parameter STAGES = 2
) (
    input  wire             clk,
    input  wire             rst_ni,
    input  wire [WIDTH-1:0] async_i,
    output wire [WIDTH-1:0] sync_o
);

    (* async_reg = "TRUE" *)
    reg [WIDTH*STAGES-1:0] meta_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            meta_q <= {WIDTH*STAGES{1'b0}};
        else
            meta_q <= {meta_q[WIDTH*(STAGES-1)-1:0], async_i};

    assign sync_o = meta_q[WIDTH*STAGES-1 -: WIDTH];

endmodule

`default_nettype wire
