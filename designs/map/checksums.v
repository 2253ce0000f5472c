// -----------------------------------------------------------------------------
// checksums: four check sums over one stream of bytes. Their logic has most in common,
// and two of them are the same, so that synthesis shares what it can.
// -----------------------------------------------------------------------------
`default_nettype none

module checksums (
    input  wire        clk_i,
    input  wire        rst_i,
    input  wire        valid_i,
    input  wire        clear_i,
    input  wire [7:0]  byte_i,
    output wire [31:0] crc32_o,
    output wire [31:0] copy_o,
    output wire [15:0] crc16_o,
    output wire [7:0]  parity_o,
    output wire        match_o
);

    reg [7:0] byte_q;
    reg       valid_q;
    always @(posedge clk_i) begin
        byte_q  <= byte_i;
        valid_q <= valid_i && !rst_i;
    end

    wire [31:0] first, second;
    crc #(.WIDTH(32), .POLYNOMIAL(32'hedb88320)) u_first (.clk_i, .rst_i, .clear_i, .valid_i(valid_q), .byte_i(byte_q),
                                                         .sum_o(first));
    crc #(.WIDTH(32), .POLYNOMIAL(32'hedb88320)) u_second (.clk_i, .rst_i, .clear_i, .valid_i(valid_q),
                                                          .byte_i(byte_q), .sum_o(second));
    crc #(.WIDTH(16), .POLYNOMIAL(16'ha001)) u_third (.clk_i, .rst_i, .clear_i, .valid_i(valid_q), .byte_i(byte_q),
                                                     .sum_o(crc16_o));

    reg [7:0] parity_q;
    always @(posedge clk_i)
        if (rst_i || clear_i)
            parity_q <= 8'd0;
        else if (valid_q)
            parity_q <= {parity_q[6:0], ^byte_q};

    assign crc32_o  = ~first;
    assign copy_o   = second;
    assign parity_o = parity_q;
    assign match_o  = first[15:0] == crc16_o;

endmodule

module crc #(
    parameter WIDTH = 32,
    parameter [WIDTH-1:0] POLYNOMIAL = 0
) (
    input  wire             clk_i,
    input  wire             rst_i,
    input  wire             clear_i,
    input  wire             valid_i,
    input  wire [7:0]       byte_i,
    output reg  [WIDTH-1:0] sum_o
);

    reg [WIDTH-1:0] next;
    integer         bit_number;

    always @* begin
        next = sum_o ^ {{(WIDTH - 8){1'b0}}, byte_i};
        for (bit_number = 0; bit_number < 8; bit_number = bit_number + 1)
            next = next[0] ? (next >> 1) ^ POLYNOMIAL : next >> 1;
    end

    always @(posedge clk_i)
        if (rst_i || clear_i)
            sum_o <= {WIDTH{1'b1}};
        else if (valid_i)
            sum_o <= next;

endmodule

`default_nettype wire
