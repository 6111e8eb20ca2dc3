#include <uni_units/converter.h>

#include <gtest/gtest.h>

#include <thread>
#include <vector>

using units::simple::Converter;

TEST(ConverterThreads, FirstUseFromManyThreadsGivesOneTable)
{
    std::vector<std::thread> threads;
    std::vector<const void*> seen(4);
    std::vector<double> results(4);
    for (std::size_t i = 0; i < seen.size(); ++i)
        threads.emplace_back([&, i] {
            const Converter converter;
            seen[i] = converter.find("kV");
            converter.convert(5, "mV", &results[i], "V");
        });
    for (auto& t : threads)
        t.join();
    for (std::size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i], seen[0]);
        EXPECT_DOUBLE_EQ(results[i], 0.005);
    }
}
