// Flip-flops. `dfflegalize` has left only types with a clock enable; clock and
// reset may have either polarity. Unused resets are tied low.

`define KVR_FF_PARAMS(CI, RI, RA, RV) \
    parameter _TECHMAP_WIREINIT_Q_   = 1'bx; \
    localparam INIT = (_TECHMAP_WIREINIT_Q_ === 1'b1); \
    wire _TECHMAP_REMOVEINIT_Q_ = 1'b1; \
    KVR_FF #(.INIT(INIT), .C_INVERTED(CI), .R_INVERTED(RI), .R_ASYNC(RA), .RESET_VALUE(RV)) \
        _TECHMAP_REPLACE_ (.C(C), .D(D), .E(E), .R(R), .Q(Q));

`define KVR_PLAIN(TYPE, CI) \
    module TYPE (input C, input D, input E, output Q); \
        wire R = 1'b0; \
        `KVR_FF_PARAMS(CI, 1'b0, 1'b0, 1'b0) \
    endmodule

`define KVR_RESET(TYPE, CI, RI, RA, RV) \
    module TYPE (input C, input D, input E, input R, output Q); \
        `KVR_FF_PARAMS(CI, RI, RA, RV) \
    endmodule

`KVR_PLAIN(\$_DFFE_PP_ , 1'b0)
`KVR_PLAIN(\$_DFFE_NP_ , 1'b1)

`KVR_RESET(\$_DFFE_PP0P_ , 1'b0, 1'b0, 1'b1, 1'b0)
`KVR_RESET(\$_DFFE_PP1P_ , 1'b0, 1'b0, 1'b1, 1'b1)
`KVR_RESET(\$_DFFE_PN0P_ , 1'b0, 1'b1, 1'b1, 1'b0)
`KVR_RESET(\$_DFFE_PN1P_ , 1'b0, 1'b1, 1'b1, 1'b1)
`KVR_RESET(\$_DFFE_NP0P_ , 1'b1, 1'b0, 1'b1, 1'b0)
`KVR_RESET(\$_DFFE_NP1P_ , 1'b1, 1'b0, 1'b1, 1'b1)
`KVR_RESET(\$_DFFE_NN0P_ , 1'b1, 1'b1, 1'b1, 1'b0)
`KVR_RESET(\$_DFFE_NN1P_ , 1'b1, 1'b1, 1'b1, 1'b1)

`KVR_RESET(\$_SDFFE_PP0P_ , 1'b0, 1'b0, 1'b0, 1'b0)
`KVR_RESET(\$_SDFFE_PP1P_ , 1'b0, 1'b0, 1'b0, 1'b1)
`KVR_RESET(\$_SDFFE_PN0P_ , 1'b0, 1'b1, 1'b0, 1'b0)
`KVR_RESET(\$_SDFFE_PN1P_ , 1'b0, 1'b1, 1'b0, 1'b1)
`KVR_RESET(\$_SDFFE_NP0P_ , 1'b1, 1'b0, 1'b0, 1'b0)
`KVR_RESET(\$_SDFFE_NP1P_ , 1'b1, 1'b0, 1'b0, 1'b1)
`KVR_RESET(\$_SDFFE_NN0P_ , 1'b1, 1'b1, 1'b0, 1'b0)
`KVR_RESET(\$_SDFFE_NN1P_ , 1'b1, 1'b1, 1'b0, 1'b1)
