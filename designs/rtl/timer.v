// -----------------------------------------------------------------------------
// timer: down counter on a slow clock, programmed from the bus clock.
//
// The reload value is stable long before the load pulse has crossed, so only the
// pulse needs synchronizing (as a toggle).
// -----------------------------------------------------------------------------
`default_nettype none

module timer #(
    parameter WIDTH = 12
) (
    input  wire             clk,
    input  wire             rst_ni,
    input  wire             load_i,
    input  wire [WIDTH-1:0] reload_i,

    input  wire             clk_slow,
    input  wire             rst_slow_ni,
    output wire             expired_o     // level, in the domain of clk
);

    reg             toggle_q;
    reg [WIDTH-1:0] reload_q;

    always @(posedge clk or negedge rst_ni)
        if (!rst_ni) begin
            toggle_q <= 1'b0;
            reload_q <= {WIDTH{1'b0}};
        end else if (load_i) begin
            toggle_q <= ~toggle_q;
            reload_q <= reload_i;
        end

    wire            toggle_slow;
    reg             toggle_old_q;
    reg [WIDTH-1:0] count_q;
    reg             expired_q;

    cdc_sync u_sync_load (
        .clk     (clk_slow),
        .rst_ni  (rst_slow_ni),
        .async_i (toggle_q),
        .sync_o  (toggle_slow)
    );

    always @(posedge clk_slow or negedge rst_slow_ni)
        if (!rst_slow_ni) begin
            toggle_old_q <= 1'b0;
            count_q      <= {WIDTH{1'b0}};
            expired_q    <= 1'b0;
        end else begin
            toggle_old_q <= toggle_slow;
            if (toggle_slow != toggle_old_q) begin
                count_q   <= reload_q;
                expired_q <= 1'b0;
            end else if (count_q != {WIDTH{1'b0}})
                count_q   <= count_q - 1'b1;
            else
                expired_q <= 1'b1;
        end

    cdc_sync u_sync_expired (
        .clk     (clk),
        .rst_ni  (rst_ni),
        .async_i (expired_q),
        .sync_o  (expired_o)
    );

endmodule

`default_nettype wire
