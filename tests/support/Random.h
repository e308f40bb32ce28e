#ifndef NYXCONFIG_RANDOM_H
#define NYXCONFIG_RANDOM_H

#include <cstddef>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace NyxTest
{

/// The seed of random tests: NYX_TEST_SEED, or always the same number.
inline unsigned TestSeed()
{
    const char* text = std::getenv("NYX_TEST_SEED");
    return text == nullptr ? 20240229U : static_cast<unsigned>(std::strtoul(text, nullptr, 10));
}

/// Random choices that are the same on every platform.
class Random
{
public:
    explicit Random(unsigned seed = TestSeed()) : m_engine(seed) {}

    /// 0 to count - 1.
    std::size_t Below(std::size_t count) { return m_engine() % count; }
    bool OneIn(std::size_t count) { return Below(count) == 0; }
    unsigned Bits() { return static_cast<unsigned>(m_engine()); }
    template<class T>
    const T& OneOf(const std::vector<T>& choices)
    {
        return choices[Below(choices.size())];
    }

private:
    std::mt19937 m_engine;
};

} // namespace NyxTest

#endif
