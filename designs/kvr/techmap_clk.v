// Clock buffers placed by `clkbufmap`, which connects two pins only: always enabled.

module KVR_CLOCK_NET (input I, output O);
    KVR_GBUFCE _TECHMAP_REPLACE_ (.I(I), .CE(1'b1), .O(O));
endmodule
