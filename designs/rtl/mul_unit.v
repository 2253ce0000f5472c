// -----------------------------------------------------------------------------
// mul_unit: multiplier on the register bus, 16 x 16 -> 32 bits, unsigned.
//
//   offset 0 and 1: factors   2: low word   3: high word, one cycle later
// -----------------------------------------------------------------------------
`default_nettype none

module mul_unit (
    input  wire        clk,
    input  wire        rst_ni,

    input  wire        sel_i,
    input  wire        we_i,
    input  wire [3:0]  addr_i,
    input  wire [15:0] wdata_i,
    output reg  [15:0] rdata_o
);

    reg [15:0] a_q, b_q;
    reg [31:0] product_q;
    reg        fresh_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            a_q     <= 16'h0000;
            b_q     <= 16'h0000;
            fresh_q <= 1'b0;
        end else begin
            fresh_q <= sel_i & we_i;
            if (sel_i & we_i) begin
                if (addr_i[0])
                    b_q <= wdata_i;
                else
                    a_q <= wdata_i;
            end
        end

    always @(posedge clk)
        if (fresh_q)
            product_q <= a_q * b_q;

    always @(posedge clk)
        if (sel_i)
            rdata_o <= addr_i[0] ? product_q[31:16] : product_q[15:0];

endmodule

`default_nettype wire
