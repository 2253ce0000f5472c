// -----------------------------------------------------------------------------
// async_fifo: first-in first-out queue between two clocks.
//
// Pointers cross in Gray code. The head word appears on rdata_o one read-clock
// cycle after `pop_i` was seen with `empty_o` low.
// -----------------------------------------------------------------------------
`default_nettype none

module async_fifo #(
    parameter WIDTH = 16,
    parameter ABITS = 4
) (
    // write side
    input  wire             wclk,
    input  wire             wrst_ni,
    input  wire             push_i,
    input  wire [WIDTH-1:0] wdata_i,
    output wire             full_o,

    // read side
    input  wire             rclk,
    input  wire             rrst_ni,
    input  wire             pop_i,
    output wire [WIDTH-1:0] rdata_o,
    output wire             empty_o,
    output wire [ABITS:0]   level_o
);

    function [ABITS:0] to_gray;
        input [ABITS:0] bin;
        to_gray = bin ^ (bin >> 1);
    endfunction

    reg  [ABITS:0] wbin_q, wgray_q;
    reg  [ABITS:0] rbin_q, rgray_q;
    wire [ABITS:0] wgray_in_r, rgray_in_w;
    wire [ABITS:0] wbin_in_r;

    wire do_push = push_i & ~full_o;
    wire do_pop  = pop_i & ~empty_o;

    // Write pointer. Full: the pointers differ in exactly the two top Gray bits.
    wire [ABITS:0] wbin_next = wbin_q + {{ABITS{1'b0}}, do_push};

    always @(posedge wclk or negedge wrst_ni)
        if (!wrst_ni) begin
            wbin_q  <= {ABITS+1{1'b0}};
            wgray_q <= {ABITS+1{1'b0}};
        end else begin
            wbin_q  <= wbin_next;
            wgray_q <= to_gray(wbin_next);
        end

    assign full_o = (wgray_q == {~rgray_in_w[ABITS:ABITS-1], rgray_in_w[ABITS-2:0]});

    // Read pointer.
    wire [ABITS:0] rbin_next = rbin_q + {{ABITS{1'b0}}, do_pop};

    always @(posedge rclk or negedge rrst_ni)
        if (!rrst_ni) begin
            rbin_q  <= {ABITS+1{1'b0}};
            rgray_q <= {ABITS+1{1'b0}};
        end else begin
            rbin_q  <= rbin_next;
            rgray_q <= to_gray(rbin_next);
        end

    assign empty_o = (rgray_q == wgray_in_r);

    // Fill level on the read side, from the write pointer converted back to binary.
    genvar i;
    generate
        for (i = 0; i <= ABITS; i = i + 1) begin : g_bin
            assign wbin_in_r[i] = ^(wgray_in_r >> i);
        end
    endgenerate

    assign level_o = wbin_in_r - rbin_q;

    cdc_sync #(.WIDTH(ABITS + 1)) u_sync_w2r (
        .clk     (rclk),
        .rst_ni  (rrst_ni),
        .async_i (wgray_q),
        .sync_o  (wgray_in_r)
    );

    cdc_sync #(.WIDTH(ABITS + 1)) u_sync_r2w (
        .clk     (wclk),
        .rst_ni  (wrst_ni),
        .async_i (rgray_q),
        .sync_o  (rgray_in_w)
    );

    ram_sdp #(.WIDTH(WIDTH), .ABITS(ABITS)) u_ram (
        .wclk    (wclk),
        .we_i    (do_push),
        .waddr_i (wbin_q[ABITS-1:0]),
        .wdata_i (wdata_i),
        .rclk    (rclk),
        .re_i    (do_pop),
        .raddr_i (rbin_q[ABITS-1:0]),
        .rdata_o (rdata_o)
    );

endmodule

`default_nettype wire
