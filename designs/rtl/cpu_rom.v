// -----------------------------------------------------------------------------
// cpu_rom: program memory with its program.
//
// The program prints a line on UART 0, starts one DMA transfer from the filter
// queue into memory, and then echoes what it receives.
// It is repeated every 64 words.
// Instruction word: {op[3:0], rd[3:0], rs[3:0], imm[3:0]}; see cpu_core.
// -----------------------------------------------------------------------------
`default_nettype none

module cpu_rom (
    input  wire        clk,
    input  wire        en_i,
    input  wire [7:0]  addr_i,
    output reg  [15:0] data_o
);

    (* ram_style = "block" *)
    reg [15:0] rom [0:63];
    integer    i;

    initial begin
        rom[6'h00] = 16'h8000;          // ldi  r0, 0x00
        rom[6'h01] = 16'h8110;          // ldi  r1, 0x10
        rom[6'h02] = 16'h8208;          // ldi  r2, 8
        rom[6'h03] = 16'h6120;          // shl  r1, r2        r1 = UART 0
        rom[6'h04] = 16'h8301;          // ldi  r3, 1
        rom[6'h05] = 16'h8448;          // ldi  r4, 'H'
        rom[6'h06] = 16'hb410;          // st   r4, [r1 + 0]
        rom[6'h07] = 16'ha511;          // ld   r5, [r1 + 1]
        rom[6'h08] = 16'h3530;          // and  r5, r3
        rom[6'h09] = 16'hc5fe;          // beqz r5, -2        until ready
        rom[6'h0a] = 16'h8469;          // ldi  r4, 'i'
        rom[6'h0b] = 16'hb410;          // st   r4, [r1 + 0]
        rom[6'h0c] = 16'h8616;          // ldi  r6, 0x16
        rom[6'h0d] = 16'h6620;          // shl  r6, r2        r6 = DMA
        rom[6'h0e] = 16'h8715;          // ldi  r7, 0x15
        rom[6'h0f] = 16'h6720;          // shl  r7, r2        r7 = filter
        rom[6'h10] = 16'hb760;          // st   r7, [r6 + 0]  source
        rom[6'h11] = 16'h8840;          // ldi  r8, 0x40
        rom[6'h12] = 16'hb861;          // st   r8, [r6 + 1]  target
        rom[6'h13] = 16'h8910;          // ldi  r9, 16
        rom[6'h14] = 16'hb962;          // st   r9, [r6 + 2]  count, starts
        rom[6'h15] = 16'ha511;          // ld   r5, [r1 + 1]
        rom[6'h16] = 16'h8b02;          // ldi  r11, 2
        rom[6'h17] = 16'h35b0;          // and  r5, r11
        rom[6'h18] = 16'hc5fd;          // beqz r5, -3        until received
        rom[6'h19] = 16'ha510;          // ld   r5, [r1 + 0]
        rom[6'h1a] = 16'hb511;          // st   r5, [r1 + 1]  clears the flag
        rom[6'h1b] = 16'hb510;          // st   r5, [r1 + 0]
        rom[6'h1c] = 16'he015;          // jmp  0x15

        for (i = 29; i < 64; i = i + 1)
            rom[i] = 16'hf000;          // halt
    end

    always @(posedge clk)
        if (en_i)
            data_o <= rom[addr_i[5:0]];

endmodule

`default_nettype wire
