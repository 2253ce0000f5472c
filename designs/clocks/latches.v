// A device without latches keeps them in look-up tables that feed themselves.
(* techmap_celltype = "$dlatch" *)
module _latch (EN, D, Q);
    parameter WIDTH = 1;
    parameter EN_POLARITY = 1;
    input EN;
    input [WIDTH-1:0] D;
    output [WIDTH-1:0] Q;
    assign Q = (EN == EN_POLARITY) ? D : Q;
endmodule
