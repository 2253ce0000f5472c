// Memories placed by `memory_libmap` with the cells of memories.txt.

module \$__KVR_RAMD16X4_ (
    input        PORT_W_CLK,
    input        PORT_W_WR_EN,
    input  [3:0] PORT_W_ADDR,
    input  [3:0] PORT_W_WR_DATA,
    input  [3:0] PORT_R_ADDR,
    output [3:0] PORT_R_RD_DATA
);
    parameter [63:0] INIT = 64'bx;

    KVR_RAMD16X4 #(.INIT(INIT)) _TECHMAP_REPLACE_ (
        .W_CLK  (PORT_W_CLK),
        .W_EN   (PORT_W_WR_EN),
        .W_ADDR (PORT_W_ADDR),
        .W_DATA (PORT_W_WR_DATA),
        .R_ADDR (PORT_R_ADDR),
        .R_DATA (PORT_R_RD_DATA)
    );
endmodule

module \$__KVR_RAM512X18_ (
    input         CLK_C,
    input         PORT_W_CLK,
    input         PORT_W_WR_EN,
    input  [8:0]  PORT_W_ADDR,
    input  [17:0] PORT_W_WR_DATA,
    input         PORT_R_CLK,
    input         PORT_R_CLK_EN,
    input  [8:0]  PORT_R_ADDR,
    output [17:0] PORT_R_RD_DATA
);
    parameter [9215:0] INIT = 9216'bx;
    parameter OPTION_SAME_CLOCK = 0;

    KVR_RAM512X18 #(.INIT(INIT)) _TECHMAP_REPLACE_ (
        .W_CLK  (OPTION_SAME_CLOCK ? CLK_C : PORT_W_CLK),
        .W_EN   (PORT_W_WR_EN),
        .W_ADDR (PORT_W_ADDR),
        .W_DATA (PORT_W_WR_DATA),
        .R_CLK  (OPTION_SAME_CLOCK ? CLK_C : PORT_R_CLK),
        .R_EN   (PORT_R_CLK_EN),
        .R_ADDR (PORT_R_ADDR),
        .R_DATA (PORT_R_RD_DATA)
    );
endmodule

module \$__KVR_DPRAM512X8_ (
    input        PORT_A_CLK,
    input        PORT_A_CLK_EN,
    input        PORT_A_WR_EN,
    input  [8:0] PORT_A_ADDR,
    input  [7:0] PORT_A_WR_DATA,
    output [7:0] PORT_A_RD_DATA,
    input        PORT_B_CLK,
    input        PORT_B_CLK_EN,
    input        PORT_B_WR_EN,
    input  [8:0] PORT_B_ADDR,
    input  [7:0] PORT_B_WR_DATA,
    output [7:0] PORT_B_RD_DATA
);
    parameter [4095:0] INIT = 4096'bx;

    KVR_DPRAM512X8 #(.INIT(INIT)) _TECHMAP_REPLACE_ (
        .CLK_A   (PORT_A_CLK),
        .EN_A    (PORT_A_CLK_EN),
        .WE_A    (PORT_A_WR_EN),
        .ADDR_A  (PORT_A_ADDR),
        .DIN0_A  (PORT_A_WR_DATA[0]), .DOUT0_A (PORT_A_RD_DATA[0]),
        .DIN1_A  (PORT_A_WR_DATA[1]), .DOUT1_A (PORT_A_RD_DATA[1]),
        .DIN2_A  (PORT_A_WR_DATA[2]), .DOUT2_A (PORT_A_RD_DATA[2]),
        .DIN3_A  (PORT_A_WR_DATA[3]), .DOUT3_A (PORT_A_RD_DATA[3]),
        .DIN4_A  (PORT_A_WR_DATA[4]), .DOUT4_A (PORT_A_RD_DATA[4]),
        .DIN5_A  (PORT_A_WR_DATA[5]), .DOUT5_A (PORT_A_RD_DATA[5]),
        .DIN6_A  (PORT_A_WR_DATA[6]), .DOUT6_A (PORT_A_RD_DATA[6]),
        .DIN7_A  (PORT_A_WR_DATA[7]), .DOUT7_A (PORT_A_RD_DATA[7]),
        .CLK_B   (PORT_B_CLK),
        .EN_B    (PORT_B_CLK_EN),
        .WE_B    (PORT_B_WR_EN),
        .ADDR_B  (PORT_B_ADDR),
        .DIN0_B  (PORT_B_WR_DATA[0]), .DOUT0_B (PORT_B_RD_DATA[0]),
        .DIN1_B  (PORT_B_WR_DATA[1]), .DOUT1_B (PORT_B_RD_DATA[1]),
        .DIN2_B  (PORT_B_WR_DATA[2]), .DOUT2_B (PORT_B_RD_DATA[2]),
        .DIN3_B  (PORT_B_WR_DATA[3]), .DOUT3_B (PORT_B_RD_DATA[3]),
        .DIN4_B  (PORT_B_WR_DATA[4]), .DOUT4_B (PORT_B_RD_DATA[4]),
        .DIN5_B  (PORT_B_WR_DATA[5]), .DOUT5_B (PORT_B_RD_DATA[5]),
        .DIN6_B  (PORT_B_WR_DATA[6]), .DOUT6_B (PORT_B_RD_DATA[6]),
        .DIN7_B  (PORT_B_WR_DATA[7]), .DOUT7_B (PORT_B_RD_DATA[7])
    );
endmodule
