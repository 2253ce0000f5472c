// Cells of yosys that it writes as instances.
`timescale 1ns / 1ps

module \$_BUF_ (input wire A, output wire Y);
    assign Y = A;
endmodule
