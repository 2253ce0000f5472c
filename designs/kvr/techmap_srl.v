// Shift registers found by `shregmap -params`. ENPOL 2 means: no enable.

module \$__SHREG_ (input C, input D, input E, output Q);
    parameter DEPTH  = 1;
    parameter [DEPTH-1:0] INIT = {DEPTH{1'bx}};
    parameter CLKPOL = 1;
    parameter ENPOL  = 2;

    wire       enable = (ENPOL == 2) ? 1'b1 : (ENPOL == 1) ? E : ~E;
    wire [4:0] last   = DEPTH - 1;

    generate
        if (DEPTH > 32) begin
            wire _TECHMAP_FAIL_ = 1'b1;
        end else if (DEPTH > 16) begin
            KVR_SRL32 #(.C_INVERTED(CLKPOL == 0)) _TECHMAP_REPLACE_ (
                .C(C), .D(D), .E(enable), .A(last), .Q(Q));
        end else begin
            KVR_SRL16 #(.C_INVERTED(CLKPOL == 0)) _TECHMAP_REPLACE_ (
                .C(C), .D(D), .E(enable), .A(last[3:0]), .Q(Q));
        end
    endgenerate
endmodule
