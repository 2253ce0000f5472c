// -----------------------------------------------------------------------------
// counters: what every small design has: a prescaler, timers with compare outputs, a
// random sequence, an edge detector, asynchronous resets. Mapped to several devices.
// -----------------------------------------------------------------------------
`default_nettype none

module counters (
    input  wire        clk_i,
    input  wire        rst_ni,
    input  wire        enable_i,
    input  wire        write_i,
    input  wire [1:0]  select_i,
    input  wire [7:0]  data_i,
    output wire [3:0]  wave_o,
    output wire [15:0] random_o,
    output reg         edge_o,
    output wire [7:0]  total_o
);

    reg [2:0] prescale_q;
    wire      tick = prescale_q == 3'd4;
    always @(posedge clk_i or negedge rst_ni)
        if (!rst_ni)
            prescale_q <= 3'd0;
        else
            prescale_q <= tick ? 3'd0 : prescale_q + {2'd0, enable_i};

    genvar number;
    generate
        for (number = 0; number < 4; number = number + 1) begin : g_timer
            timer_unit u_timer (.clk_i, .rst_ni, .tick_i(tick), .write_i(write_i && select_i == number), .data_i,
                                .wave_o(wave_o[number]));
        end
    endgenerate

    reg [15:0] random_q;
    always @(posedge clk_i or negedge rst_ni)
        if (!rst_ni)
            random_q <= 16'hace1;
        else if (enable_i)
            random_q <= {random_q[14:0], random_q[15] ^ random_q[13] ^ random_q[12] ^ random_q[10]};
    assign random_o = random_q;

    reg wave_q;
    reg [7:0] total_q;
    always @(posedge clk_i) begin
        wave_q <= wave_o[0];
        edge_o <= wave_o[0] && !wave_q;
        if (write_i && select_i == 2'd3 && data_i == 8'd0)
            total_q <= 8'd0;
        else
            total_q <= total_q + {7'd0, edge_o};
    end
    assign total_o = total_q;

endmodule

module timer_unit (
    input  wire       clk_i,
    input  wire       rst_ni,
    input  wire       tick_i,
    input  wire       write_i,
    input  wire [7:0] data_i,
    output wire       wave_o
);

    reg [7:0] limit_q, count_q;
    reg       wave_q;

    always @(posedge clk_i or negedge rst_ni)
        if (!rst_ni) begin
            limit_q <= 8'd3;
            count_q <= 8'd0;
            wave_q  <= 1'b1;
        end else begin
            if (write_i)
                limit_q <= data_i;
            if (tick_i) begin
                count_q <= count_q >= limit_q ? 8'd0 : count_q + 8'd1;
                if (count_q >= limit_q)
                    wave_q <= !wave_q;
            end
        end

    assign wave_o = wave_q;

endmodule

`default_nettype wire
