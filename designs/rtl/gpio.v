// -----------------------------------------------------------------------------
// gpio: WIDTH two-way pins.  offset 0 value, 1 direction (1 drives the pin).
// -----------------------------------------------------------------------------
`default_nettype none

module gpio #(
    parameter WIDTH = 4
) (
    input  wire             clk,
    input  wire             rst_ni,

    input  wire             sel_i,
    input  wire             we_i,
    input  wire [3:0]       addr_i,
    input  wire [15:0]      wdata_i,
    output reg  [15:0]      rdata_o,

    inout  wire [WIDTH-1:0] pad_io
);

    reg  [WIDTH-1:0] value_q;
    reg  [WIDTH-1:0] drive_q;
    wire [WIDTH-1:0] pad_in;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            value_q <= {WIDTH{1'b0}};
            drive_q <= {WIDTH{1'b0}};
        end else if (sel_i & we_i) begin
            if (addr_i[0])
                drive_q <= wdata_i[WIDTH-1:0];
            else
                value_q <= wdata_i[WIDTH-1:0];
        end

    genvar p;
    generate
        for (p = 0; p < WIDTH; p = p + 1) begin : g_pad
            assign pad_io[p] = drive_q[p] ? value_q[p] : 1'bz;
        end
    endgenerate

    cdc_sync #(.WIDTH(WIDTH)) u_sync (
        .clk     (clk),
        .rst_ni  (rst_ni),
        .async_i (pad_io),
        .sync_o  (pad_in)
    );

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni)
            rdata_o <= 16'h0000;
        else if (sel_i)
            rdata_o <= {{16-WIDTH{1'b0}}, addr_i[0] ? drive_q : pad_in};

endmodule

`default_nettype wire
