// -----------------------------------------------------------------------------
// KVR cell library, as black boxes.
//
// Clock pins carry the port attribute KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE";
// `clkbuf_sink` and `clkbuf_driver` tell the synthesizer where clock buffers are
// needed and where they already are. Vectors are little endian; a configuration
// bit vector holds the value for address 0 in its lowest bits.
// -----------------------------------------------------------------------------

// ---------------------------------------------------------------- look-up tables
// O = INIT[{I5, .. I0}].

(* blackbox *)
module KVR_LUT1 #(parameter [1:0] INIT = 2'h0) (
    input I0, output O);
endmodule

(* blackbox *)
module KVR_LUT2 #(parameter [3:0] INIT = 4'h0) (
    input I0, input I1, output O);
endmodule

(* blackbox *)
module KVR_LUT3 #(parameter [7:0] INIT = 8'h00) (
    input I0, input I1, input I2, output O);
endmodule

(* blackbox *)
module KVR_LUT4 #(parameter [15:0] INIT = 16'h0000) (
    input I0, input I1, input I2, input I3, output O);
endmodule

(* blackbox *)
module KVR_LUT5 #(parameter [31:0] INIT = 32'h0) (
    input I0, input I1, input I2, input I3, input I4, output O);
endmodule

(* blackbox *)
module KVR_LUT6 #(parameter [63:0] INIT = 64'h0) (
    input I0, input I1, input I2, input I3, input I4, input I5, output O);
endmodule

// ---------------------------------------------------------------- flip-flop
// Clock enable E; reset R to RESET_VALUE, asynchronous or in step with C.

(* blackbox *)
module KVR_FF #(
    parameter [0:0] INIT        = 1'b0,
    parameter [0:0] C_INVERTED  = 1'b0,
    parameter [0:0] R_INVERTED  = 1'b0,
    parameter [0:0] R_ASYNC     = 1'b0,
    parameter [0:0] RESET_VALUE = 1'b0
) (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input  C,
    input  D,
    input  E,
    input  R,
    output Q
);
endmodule

// ---------------------------------------------------------------- shift registers
// Q is D as it was A + 1 enabled cycles ago.

(* blackbox *)
module KVR_SRL16 #(
    parameter [15:0] INIT       = 16'h0000,
    parameter [0:0]  C_INVERTED = 1'b0
) (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input        C,
    input        D,
    input        E,
    input  [3:0] A,
    output       Q
);
endmodule

(* blackbox *)
module KVR_SRL32 #(
    parameter [31:0] INIT       = 32'h0000_0000,
    parameter [0:0]  C_INVERTED = 1'b0
) (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input        C,
    input        D,
    input        E,
    input  [4:0] A,
    output       Q
);
endmodule

// ---------------------------------------------------------------- memories
// Pins of one side begin with that side's letter. KVR_RAMD16X4 reads at once,
// without a clock; KVR_RAM512X18 has a clock on each side.

(* blackbox *)
module KVR_RAMD16X4 #(parameter [63:0] INIT = 64'h0) (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input        W_CLK,
    input        W_EN,
    input  [3:0] W_ADDR,
    input  [3:0] W_DATA,
    input  [3:0] R_ADDR,
    output [3:0] R_DATA
);
endmodule

(* blackbox *)
module KVR_RAM512X18 #(parameter [9215:0] INIT = 9216'h0) (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input         W_CLK,
    input         W_EN,
    input  [8:0]  W_ADDR,
    input  [17:0] W_DATA,
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input         R_CLK,
    input         R_EN,
    input  [8:0]  R_ADDR,
    output [17:0] R_DATA
);
endmodule

// Two equal sides; pins of one side end with that side's letter.

(* blackbox *)
module KVR_DPRAM512X8 #(parameter [4095:0] INIT = 4096'h0) (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input        CLK_A,
    input        EN_A,
    input        WE_A,
    input  [8:0] ADDR_A,
    input        DIN0_A, DIN1_A, DIN2_A, DIN3_A, DIN4_A, DIN5_A, DIN6_A, DIN7_A,
    output       DOUT0_A, DOUT1_A, DOUT2_A, DOUT3_A, DOUT4_A, DOUT5_A, DOUT6_A, DOUT7_A,
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input        CLK_B,
    input        EN_B,
    input        WE_B,
    input  [8:0] ADDR_B,
    input        DIN0_B, DIN1_B, DIN2_B, DIN3_B, DIN4_B, DIN5_B, DIN6_B, DIN7_B,
    output       DOUT0_B, DOUT1_B, DOUT2_B, DOUT3_B, DOUT4_B, DOUT5_B, DOUT6_B, DOUT7_B
);
endmodule

// ---------------------------------------------------------------- arithmetic
// KVR_MULT: P = A * B, registered. KVR_DSP48: P = C + A * B, registered.
// Operands are signed.

(* blackbox *)
module KVR_MULT (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input         CLK,
    input         CE,
    input  [17:0] A,
    input  [17:0] B,
    output [35:0] P
);
endmodule

(* blackbox *)
module KVR_DSP48 (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input         CLK,
    input         CE,
    input  [17:0] A,
    input  [17:0] B,
    input  [47:0] C,
    output [47:0] P
);
endmodule

// ---------------------------------------------------------------- pins and clocks

(* blackbox *)
module KVR_IDDR (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input  C,
    input  D,
    output Q0,
    output Q1
);
endmodule

(* blackbox *)
module KVR_ODDR (
    (* clkbuf_sink *)
    (* KVR_ATTRIBUTE_PORT__IS_CLOCK = "TRUE" *)
    input  C,
    input  D0,
    input  D1,
    output Q
);
endmodule

(* blackbox *)
module KVR_GBUFCE (
    input  I,
    input  CE,
    (* clkbuf_driver *)
    output O
);
endmodule

(* blackbox *)
module KVR_IBUF (
    (* iopad_external_pin *)
    input  I,
    output O
);
endmodule

(* blackbox *)
module KVR_OBUF (
    input  I,
    (* iopad_external_pin *)
    output O
);
endmodule

// OE high drives the pin.
(* blackbox *)
module KVR_IOBUF (
    input  I,
    input  OE,
    output O,
    (* iopad_external_pin *)
    inout  IO
);
endmodule
