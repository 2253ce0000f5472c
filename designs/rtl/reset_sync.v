// -----------------------------------------------------------------------------
// reset_sync: asserts a reset at once, releases it in step with a clock.
// -----------------------------------------------------------------------------
`default_nettype none

module reset_sync #(
    parameter STAGES = 2
) (
    input  wire clk,
    input  wire rst_async_ni,
    output wire rst_no
);

    (* async_reg = "TRUE" *)
    reg [STAGES-1:0] chain_q;

    always @(posedge clk or negedge rst_async_ni)
        if (!rst_async_ni)
            chain_q <= {STAGES{1'b0}};
        else
            chain_q <= {chain_q[STAGES-2:0], 1'b1};

    assign rst_no = chain_q[STAGES-1];

endmodule

`default_nettype wire
