#include "Core/TestSequence/OutputValueIndex.h"

#include "Core/TestSequence/TestSequence.h"

#include <gtest/gtest.h>
#include <memory>
#include <random>
#include <string>

namespace {

// A sequence of `rows` rows with outputs y and z, random times and delta times.
std::unique_ptr<TestSequence> make_sequence(std::mt19937& random, int rows, bool ascending)
{
    auto sequence = std::make_unique<TestSequence>(TSInitEmpty);
    auto* header = new TestVectorHeader();
    header->add_input("a", "");
    header->add_output("y", "", false);
    header->add_output("z", "", true);
    sequence->set_header(header);
    int time = 0;
    for (int r = 0; r < rows; ++r) {
        time += 1 + static_cast<int>(random() % 10);
        auto* vector = new TestVector(time);
        vector->set_header(header);
        vector->add_input("H");
        vector->add_output("y" + std::to_string(r), false);
        vector->add_output("z" + std::to_string(r), true);
        vector->set_delta_time(ascending ? 0 : static_cast<int>(random() % 25));
        sequence->add_vector(vector);
    }
    return sequence;
}

}  // namespace

TEST(OutputValueIndexTest, AgreesWithTheRowWalkEverywhere)
{
    std::mt19937 random(7);
    for (bool ascending : {true, false}) {
        for (int rows : {0, 1, 2, 5, 40}) {
            auto sequence = make_sequence(random, rows, ascending);
            OutputValueIndex index(*sequence);
            for (const char* name : {"y", "z", "q"}) {
                for (int time = -2; time < 450; ++time) {
                    ASSERT_EQ(index.get_output_value(name, time), sequence->get_output_value(name, time))
                        << name << "@" << time << " rows=" << rows << " ascending=" << ascending;
                }
            }
        }
    }
}
