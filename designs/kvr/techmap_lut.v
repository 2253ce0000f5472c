// Look-up tables: one cell per number of inputs.

(* techmap_celltype = "$lut" *)
module kvr_map_lut (A, Y);
    parameter WIDTH = 0;
    parameter LUT   = 0;
    input  [WIDTH-1:0] A;
    output             Y;

    generate
        if (WIDTH == 1) begin
            KVR_LUT1 #(.INIT(LUT)) _TECHMAP_REPLACE_ (.I0(A[0]), .O(Y));
        end else if (WIDTH == 2) begin
            KVR_LUT2 #(.INIT(LUT)) _TECHMAP_REPLACE_ (.I0(A[0]), .I1(A[1]), .O(Y));
        end else if (WIDTH == 3) begin
            KVR_LUT3 #(.INIT(LUT)) _TECHMAP_REPLACE_ (
                .I0(A[0]), .I1(A[1]), .I2(A[2]), .O(Y));
        end else if (WIDTH == 4) begin
            KVR_LUT4 #(.INIT(LUT)) _TECHMAP_REPLACE_ (
                .I0(A[0]), .I1(A[1]), .I2(A[2]), .I3(A[3]), .O(Y));
        end else if (WIDTH == 5) begin
            KVR_LUT5 #(.INIT(LUT)) _TECHMAP_REPLACE_ (
                .I0(A[0]), .I1(A[1]), .I2(A[2]), .I3(A[3]), .I4(A[4]), .O(Y));
        end else if (WIDTH == 6) begin
            KVR_LUT6 #(.INIT(LUT)) _TECHMAP_REPLACE_ (
                .I0(A[0]), .I1(A[1]), .I2(A[2]), .I3(A[3]), .I4(A[4]), .I5(A[5]), .O(Y));
        end else begin
            wire _TECHMAP_FAIL_ = 1'b1;
        end
    endgenerate
endmodule
