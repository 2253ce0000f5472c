// -----------------------------------------------------------------------------
// machines: state machines that synthesis encodes anew: a receiver of frames, a traffic
// light, and a pair that hands a token back and forth.
// -----------------------------------------------------------------------------
`default_nettype none

module machines (
    input  wire       clk_i,
    input  wire       rst_i,
    input  wire       bit_i,
    input  wire       strobe_i,
    input  wire       car_i,
    input  wire       walker_i,
    output wire [7:0] byte_o,
    output wire       valid_o,
    output wire       error_o,
    output wire [2:0] lamps_o,
    output wire       walk_o,
    output wire [1:0] token_o
);

    receiver u_receiver (.clk_i, .rst_i, .bit_i, .strobe_i, .byte_o, .valid_o, .error_o);
    lights u_lights (.clk_i, .rst_i, .car_i, .walker_i, .lamps_o, .walk_o);
    player u_left (.clk_i, .rst_i, .first_i(1'b1), .give_i(token_o[1]), .hold_i(car_i), .token_o(token_o[0]));
    player u_right (.clk_i, .rst_i, .first_i(1'b0), .give_i(token_o[0]), .hold_i(walker_i), .token_o(token_o[1]));

endmodule

module receiver (
    input  wire       clk_i,
    input  wire       rst_i,
    input  wire       bit_i,
    input  wire       strobe_i,
    output reg  [7:0] byte_o,
    output reg        valid_o,
    output reg        error_o
);

    localparam IDLE = 3'd0, START = 3'd1, DATA = 3'd2, PARITY = 3'd3, STOP = 3'd4;
    reg [2:0] state_q;
    reg [2:0] count_q;
    reg       parity_q;

    always @(posedge clk_i)
        if (rst_i) begin
            state_q  <= IDLE;
            count_q  <= 3'd0;
            parity_q <= 1'b0;
            byte_o   <= 8'd0;
            valid_o  <= 1'b0;
            error_o  <= 1'b0;
        end else begin
            valid_o <= 1'b0;
            if (strobe_i)
                case (state_q)
                IDLE:    if (!bit_i) state_q <= START;
                START:   begin state_q <= DATA; count_q <= 3'd0; parity_q <= bit_i; end
                DATA: begin
                    byte_o   <= {bit_i, byte_o[7:1]};
                    parity_q <= parity_q ^ bit_i;
                    count_q  <= count_q + 3'd1;
                    if (count_q == 3'd7) state_q <= PARITY;
                end
                PARITY:  begin error_o <= parity_q != bit_i; state_q <= STOP; end
                STOP:    begin valid_o <= !error_o; state_q <= bit_i ? IDLE : START; end
                default: state_q <= IDLE;
                endcase
        end

endmodule

module lights (
    input  wire       clk_i,
    input  wire       rst_i,
    input  wire       car_i,
    input  wire       walker_i,
    output wire [2:0] lamps_o,
    output wire       walk_o
);

    localparam RED = 3'd0, WAIT = 3'd1, GREEN = 3'd2, AMBER = 3'd3, WALK = 3'd4, CLEAR = 3'd5;
    reg [2:0] phase_q;
    reg [3:0] time_q;
    wire      over = time_q == 4'd0;

    always @(posedge clk_i)
        if (rst_i) begin
            phase_q <= RED;
            time_q  <= 4'd3;
        end else begin
            time_q <= over ? 4'd3 : time_q - 4'd1;
            if (over)
                case (phase_q)
                RED:     phase_q <= walker_i ? WALK : car_i ? WAIT : RED;
                WAIT:    phase_q <= GREEN;
                GREEN:   if (walker_i) phase_q <= AMBER; else time_q <= 4'd7;
                AMBER:   phase_q <= RED;
                WALK:    phase_q <= CLEAR;
                default: phase_q <= RED;
                endcase
        end

    assign lamps_o = {phase_q == RED || phase_q == WAIT || phase_q == WALK, phase_q == WAIT || phase_q == AMBER,
                      phase_q == GREEN};
    assign walk_o  = phase_q == WALK;

endmodule

module player (
    input  wire clk_i,
    input  wire rst_i,
    input  wire first_i,
    input  wire give_i,
    input  wire hold_i,
    output wire token_o
);

    localparam EMPTY = 2'd0, HELD = 2'd1, SENT = 2'd2;
    reg [1:0] state_q;
    reg [4:0] turns_q;

    always @(posedge clk_i)
        if (rst_i) begin
            state_q <= first_i ? HELD : EMPTY;
            turns_q <= 5'd0;
        end else
            case (state_q)
            EMPTY:   if (give_i) state_q <= HELD;
            HELD:    if (!hold_i) begin state_q <= SENT; turns_q <= turns_q + 5'd1; end
            SENT:    state_q <= EMPTY;
            default: state_q <= EMPTY;
            endcase

    assign token_o = state_q == SENT && turns_q[0] ^ turns_q[1] | state_q == SENT;

endmodule

`default_nettype wire
