// usage: guard load|save|digest|compare FOLDER
//
// Does one operation on the typical document, for the count of its instructions: only those within Measured() are
// counted. The operation was done once before, so that nothing of a first time is in the count.

#include "Generator.h"
#include "Operations.h"

#include <cstring>
#include <exception>
#include <functional>
#include <iostream>
#include <map>

/// Found by its name, hence no C++ name.
extern "C" [[gnu::noinline]] void Measured(const std::function<void()>& operation)
{
    operation();
}

namespace
{

void Run(const std::string& name, const std::string& folder)
{
    using namespace KvDeviceFootprint;
    const std::string file = folder + "/typical.xml";
    bench::MakeFile(bench::DocumentByName("typical"), file);
    CDeviceFootprint lhs;
    CDeviceFootprint rhs;
    bench::Load(file, lhs);
    bench::Load(file, rhs);
    CComparatorRules rules;
    CDefaultHistoryComparatorRulesFactory().CreateRules(rules);
    const std::map<std::string, std::function<void()>> operations = {
        {"load",
         [&] {
             CDeviceFootprint footprint;
             bench::Load(file, footprint);
         }},
        {"save", [&] { bench::Save(lhs, folder); }},
        {"digest", [&] { bench::Validate(lhs); }},
        {"compare", [&] { bench::Compare(lhs, rhs, rules); }},
    };
    const std::function<void()>& operation = operations.at(name);
    operation();
    Measured(operation);
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: guard load|save|digest|compare FOLDER\n";
        return 2;
    }
    try {
        Run(argv[1], argv[2]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "guard: " << error.what() << "\n";
        return 1;
    }
}
