// -----------------------------------------------------------------------------
// bus_decoder: selects one slave from the page part of the address.
//
// Pages 0x00 to 0x0f belong to slave 0 (memory); page 0x10 + k to slave k + 1.
// -----------------------------------------------------------------------------
`default_nettype none

module bus_decoder #(
    parameter SLAVES = 12
) (
    input  wire [15:8]       page_i,
    input  wire              valid_i,
    output wire [SLAVES-1:0] sel_o,
    output wire              miss_o
);

    genvar s;
    generate
        for (s = 1; s < SLAVES; s = s + 1) begin : g_sel
            assign sel_o[s] = valid_i & (page_i == 8'h10 + (s - 1));
        end
    endgenerate

    assign sel_o[0] = valid_i & (page_i[15:12] == 4'h0);
    assign miss_o   = valid_i & ~|sel_o;

endmodule

`default_nettype wire
