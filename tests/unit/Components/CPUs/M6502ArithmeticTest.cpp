// ADC and SBC of the 6502 core over every operand pair, carry and mode, against a model of the NMOS ALU.
#include "M6502Harness.h"

#include <gtest/gtest.h>

namespace {

struct AluResult
{
    uint8_t a;  // accumulator after
    uint8_t p;  // status after
};

// The model keeps I, D, B and bit 5 of `p` and computes the other four flags.
AluResult model_adc(uint8_t a, uint8_t m, uint8_t p, bool decimal)
{
    const int c = p & 1;
    const int binary = a + m + c;
    uint8_t result = static_cast<uint8_t>(binary);
    bool carry = binary > 255;
    bool negative = result & 0x80;
    bool overflow = ((a & 0x80) == (m & 0x80)) && ((result & 0x80) != (a & 0x80));
    if (decimal) {
        int low = (a & 0x0F) + (m & 0x0F) + c;
        low = low > 9 ? low + 6 : low;
        int high = (a >> 4) + (m >> 4) + (low > 15);
        negative = (high << 4) & 0x80;
        overflow = ((a & 0x80) == (m & 0x80)) && (((high << 4) & 0x80) != (a & 0x80));
        carry = high > 9;
        high = carry ? high + 6 : high;
        result = static_cast<uint8_t>((high << 4) + (low & 0x0F));
    }
    const bool zero = (binary & 0xFF) == 0;
    return {result,
            static_cast<uint8_t>((p & 0x3C) | (negative << 7) | (overflow << 6) | (zero << 1) | carry)};
}

AluResult model_sbc(uint8_t a, uint8_t m, uint8_t p, bool decimal)
{
    const int borrow = 1 - (p & 1);
    const int binary = a - m - borrow;
    uint8_t result = static_cast<uint8_t>(binary);
    const bool carry = binary >= 0;
    const bool negative = result & 0x80;
    const bool overflow = ((a & 0x80) != (m & 0x80)) && ((result & 0x80) != (a & 0x80));
    const bool zero = result == 0;
    if (decimal) {
        int low = (a & 0x0F) - (m & 0x0F) - borrow;
        const int low_borrow = low < 0;
        low = low_borrow ? low - 6 : low;
        int high = (a >> 4) - (m >> 4) - low_borrow;
        high = high < 0 ? high - 6 : high;
        result = static_cast<uint8_t>((high << 4) | (low & 0x0F));
    }
    return {result,
            static_cast<uint8_t>((p & 0x3C) | (negative << 7) | (overflow << 6) | (zero << 1) | carry)};
}

struct SpotCase
{
    uint8_t opcode, a, m, p;  // ADC or SBC immediate, inputs
    uint8_t want_a, want_p;   // outputs
};

// Hand-worked cases, so that the model itself is pinned down too.
const SpotCase spot_cases[] = {
    {0x69, 0x99, 0x01, 0x38, 0x00, 0xB9},  // Z from the binary sum 0x9A; N from the high digit 10
    {0x69, 0x09, 0x01, 0x38, 0x10, 0x38},  // low digit carries
    {0x69, 0x58, 0x46, 0x39, 0x05, 0xF9},  // 58 + 46 + 1 = 105; N and V from the high digit 10
    {0x69, 0x0F, 0x0F, 0x38, 0x14, 0x38},  // invalid digits: F + F = 30, + 6 = 36, carry
    {0xE9, 0x00, 0x01, 0x39, 0x99, 0xB8},  // 0 - 1 = 99 with borrow
    {0xE9, 0x46, 0x12, 0x39, 0x34, 0x39}, {0xE9, 0x40, 0x13, 0x39, 0x27, 0x39},
    {0x69, 0x7F, 0x01, 0x30, 0x80, 0xF0},  // binary overflow
    {0xE9, 0x80, 0x01, 0x31, 0x7F, 0x71},
};

AluResult run_immediate(M6502Harness& h, uint8_t opcode, uint8_t a, uint8_t m, uint8_t p)
{
    h.mem(0x0400) = opcode;
    h.mem(0x0401) = m;
    h.start_at(0x0400);
    m6502_set_a(&h.cpu, a);
    m6502_set_p(&h.cpu, p);
    h.tick();
    h.tick();
    return {m6502_a(&h.cpu), m6502_p(&h.cpu)};
}

TEST(M6502ArithmeticTest, SpotCasesMatchModelAndCore)
{
    M6502Harness h;
    h.reset_to(0x0400);
    for (const SpotCase& row : spot_cases) {
        const AluResult model = row.opcode == 0x69 ? model_adc(row.a, row.m, row.p, row.p & cpu65_df)
                                                   : model_sbc(row.a, row.m, row.p, row.p & cpu65_df);
        const AluResult core = run_immediate(h, row.opcode, row.a, row.m, row.p);
        SCOPED_TRACE(testing::Message() << std::hex << "op " << int(row.opcode) << " a " << int(row.a)
                                        << " m " << int(row.m) << " p " << int(row.p));
        EXPECT_EQ(model.a, row.want_a);
        EXPECT_EQ(model.p, row.want_p);
        EXPECT_EQ(core.a, row.want_a);
        EXPECT_EQ(core.p, row.want_p);
    }
}

// Every A, operand and carry, in binary and decimal mode, with the D flag working and switched off.
TEST(M6502ArithmeticTest, AdcAndSbcMatchModelOverAllOperands)
{
    int failures = 0;
    for (bool bcd_disabled : {false, true}) {
        M6502Harness h(bcd_disabled);
        h.reset_to(0x0400);
        for (int d = 0; d < 2; d++) {
            for (int c = 0; c < 2; c++) {
                for (int a = 0; a < 256; a++) {
                    for (int m = 0; m < 256; m++) {
                        // N, V and Z start set on half the cases so that clearing them is checked too.
                        const uint8_t p =
                            static_cast<uint8_t>(0x30 | (d ? cpu65_df : 0) | c | (((a ^ m) & 1) ? 0xC2 : 0));
                        const bool decimal = d && !bcd_disabled;
                        for (uint8_t opcode : {uint8_t(0x69), uint8_t(0xE9)}) {
                            const AluResult model = opcode == 0x69
                                                        ? model_adc(uint8_t(a), uint8_t(m), p, decimal)
                                                        : model_sbc(uint8_t(a), uint8_t(m), p, decimal);
                            const AluResult core = run_immediate(h, opcode, uint8_t(a), uint8_t(m), p);
                            if ((core.a != model.a || core.p != model.p) && ++failures <= 10) {
                                ADD_FAILURE()
                                    << std::hex << (opcode == 0x69 ? "ADC" : "SBC") << " a=" << a
                                    << " m=" << m << " p=" << int(p) << " bcd_disabled=" << bcd_disabled
                                    << ": core a=" << int(core.a) << " p=" << int(core.p)
                                    << ", model a=" << int(model.a) << " p=" << int(model.p);
                            }
                        }
                    }
                }
            }
        }
    }
    EXPECT_EQ(failures, 0);
}

}  // namespace
