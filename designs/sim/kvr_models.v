// -----------------------------------------------------------------------------
// Simulation models of the KVR cells, for running the testbenches on the mapped
// netlist. Registers and memories start at zero where nothing else is given; a look-up
// table takes time, so that ring oscillators do not stop the simulation.
// -----------------------------------------------------------------------------
`timescale 1ns / 1ps

// With RANDOM_STATE, registers and memories start with anything instead.
`ifdef RANDOM_STATE
`define START(value) {32{$random}}
`else
`define START(value) value
`endif

module KVR_LUT1 #(parameter [1:0] INIT = 0) (input I0, output O);
    assign #1 O = INIT[I0];
endmodule

module KVR_LUT2 #(parameter [3:0] INIT = 0) (input I0, I1, output O);
    assign #0.1 O = INIT[{I1, I0}];
endmodule

module KVR_LUT3 #(parameter [7:0] INIT = 0) (input I0, I1, I2, output O);
    assign #0.1 O = INIT[{I2, I1, I0}];
endmodule

module KVR_LUT4 #(parameter [15:0] INIT = 0) (input I0, I1, I2, I3, output O);
    assign #0.1 O = INIT[{I3, I2, I1, I0}];
endmodule

module KVR_LUT5 #(parameter [31:0] INIT = 0) (input I0, I1, I2, I3, I4, output O);
    assign #0.1 O = INIT[{I4, I3, I2, I1, I0}];
endmodule

module KVR_LUT6 #(parameter [63:0] INIT = 0) (input I0, I1, I2, I3, I4, I5, output O);
    assign #0.1 O = INIT[{I5, I4, I3, I2, I1, I0}];
endmodule

module KVR_FF #(
    parameter [0:0] INIT = 0, C_INVERTED = 0, R_INVERTED = 0, R_ASYNC = 0, RESET_VALUE = 0
) (input C, D, E, R, output reg Q);
    wire clk   = C ^ C_INVERTED;
    wire reset = R ^ R_INVERTED;
    wire clear = R_ASYNC & reset;

    initial Q = `START(INIT);

    always @(posedge clk or posedge clear)
        if (clear)
            Q <= RESET_VALUE;
        else if (reset)
            Q <= RESET_VALUE;
        else if (E)
            Q <= D;
endmodule

module KVR_SRL16 #(parameter [15:0] INIT = 0, parameter [0:0] C_INVERTED = 0) (
    input C, D, E, input [3:0] A, output Q);
    reg [15:0] line = `START(16'h0000);
    always @(posedge (C ^ C_INVERTED)) if (E) line <= {line[14:0], D};
    assign Q = line[A];
endmodule

module KVR_SRL32 #(parameter [31:0] INIT = 0, parameter [0:0] C_INVERTED = 0) (
    input C, D, E, input [4:0] A, output Q);
    reg [31:0] line = `START(32'h0000_0000);
    always @(posedge (C ^ C_INVERTED)) if (E) line <= {line[30:0], D};
    assign Q = line[A];
endmodule

module KVR_RAMD16X4 #(parameter [63:0] INIT = 0) (
    input W_CLK, W_EN, input [3:0] W_ADDR, W_DATA, R_ADDR, output [3:0] R_DATA);
    reg [3:0] mem [0:15];
    integer   i;
    initial
        for (i = 0; i < 64; i = i + 1)
            mem[i / 4][i % 4] = `START(INIT[i] === 1'b1);
    always @(posedge W_CLK) if (W_EN) mem[W_ADDR] <= W_DATA;
    assign R_DATA = mem[R_ADDR];
endmodule

module KVR_RAM512X18 #(parameter [9215:0] INIT = 0) (
    input W_CLK, W_EN, input [8:0] W_ADDR, input [17:0] W_DATA,
    input R_CLK, R_EN, input [8:0] R_ADDR, output reg [17:0] R_DATA = `START(0));
    reg [17:0] mem [0:511];
    integer    i;
    initial
        for (i = 0; i < 9216; i = i + 1)
            mem[i / 18][i % 18] = `START(INIT[i] === 1'b1);
    always @(posedge W_CLK) if (W_EN) mem[W_ADDR] <= W_DATA;
    always @(posedge R_CLK) if (R_EN) R_DATA <= mem[R_ADDR];
endmodule

module KVR_DPRAM512X8 #(parameter [4095:0] INIT = 0) (
    input        CLK_A, EN_A, WE_A, input [8:0] ADDR_A,
    input        DIN0_A, DIN1_A, DIN2_A, DIN3_A, DIN4_A, DIN5_A, DIN6_A, DIN7_A,
    output       DOUT0_A, DOUT1_A, DOUT2_A, DOUT3_A, DOUT4_A, DOUT5_A, DOUT6_A, DOUT7_A,
    input        CLK_B, EN_B, WE_B, input [8:0] ADDR_B,
    input        DIN0_B, DIN1_B, DIN2_B, DIN3_B, DIN4_B, DIN5_B, DIN6_B, DIN7_B,
    output       DOUT0_B, DOUT1_B, DOUT2_B, DOUT3_B, DOUT4_B, DOUT5_B, DOUT6_B, DOUT7_B);
    reg [7:0] mem [0:511];
    reg [7:0] a = `START(0), b = `START(0);
    integer   i;
    initial
        for (i = 0; i < 4096; i = i + 1)
            mem[i / 8][i % 8] = `START(INIT[i] === 1'b1);
    always @(posedge CLK_A)
        if (EN_A) begin
            if (WE_A)
                mem[ADDR_A] <= {DIN7_A, DIN6_A, DIN5_A, DIN4_A, DIN3_A, DIN2_A, DIN1_A, DIN0_A};
            else
                a <= mem[ADDR_A];
        end
    always @(posedge CLK_B)
        if (EN_B) begin
            if (WE_B)
                mem[ADDR_B] <= {DIN7_B, DIN6_B, DIN5_B, DIN4_B, DIN3_B, DIN2_B, DIN1_B, DIN0_B};
            else
                b <= mem[ADDR_B];
        end
    assign {DOUT7_A, DOUT6_A, DOUT5_A, DOUT4_A, DOUT3_A, DOUT2_A, DOUT1_A, DOUT0_A} = a;
    assign {DOUT7_B, DOUT6_B, DOUT5_B, DOUT4_B, DOUT3_B, DOUT2_B, DOUT1_B, DOUT0_B} = b;
endmodule

module KVR_MULT (input CLK, CE, input [17:0] A, B, output reg [35:0] P = `START(0));
    always @(posedge CLK) if (CE) P <= $signed(A) * $signed(B);
endmodule

module KVR_DSP48 (input CLK, CE, input [17:0] A, B, input [47:0] C, output reg [47:0] P = `START(0));
    always @(posedge CLK) if (CE) P <= $signed(C) + $signed(A) * $signed(B);
endmodule

module KVR_IDDR (input C, D, output reg Q0 = `START(0), output reg Q1 = `START(0));
    reg rise = `START(0), fall = `START(0);
    always @(posedge C) rise <= D;
    always @(negedge C) fall <= D;
    always @(posedge C) begin
        Q0 <= rise;
        Q1 <= fall;
    end
endmodule

module KVR_ODDR (input C, D0, D1, output Q);
    reg rise = `START(0), fall = `START(0);
    always @(posedge C) begin
        rise <= D0;
        fall <= D1;
    end
    assign Q = C ? rise : fall;
endmodule

module KVR_GBUFCE (input I, CE, output O);
    reg enable = 1'b1;
    always @(negedge I) enable <= CE;
    assign O = I & enable;
endmodule

module KVR_IBUF (input I, output O);
    assign O = I;
endmodule

module KVR_OBUF (input I, output O);
    assign O = I;
endmodule

module KVR_IOBUF (input I, OE, output O, inout IO);
    assign IO = OE ? I : 1'bz;
    assign O  = IO;
endmodule
