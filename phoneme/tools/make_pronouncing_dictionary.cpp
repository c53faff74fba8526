// make_pronouncing_dictionary CMU_LIST OUTPUT
// Writes the module's dictionary text generated from a CMU pronouncing list.

#include "phoneme/tools/dictionary_generator.h"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <sstream>

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: make_pronouncing_dictionary CMU_LIST OUTPUT\n";
        return 2;
    }
    std::ifstream in(argv[1], std::ios::binary);
    if (!in) {
        std::cerr << "make_pronouncing_dictionary: cannot read " << argv[1] << "\n";
        return 1;
    }
    std::ostringstream source;
    source << in.rdbuf();
    Zelmor::DictionaryGeneratorStats stats;
    const std::string text = Zelmor::generateDictionaryText(source.str(), &stats);
    std::ofstream out(argv[2], std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
        std::cerr << "make_pronouncing_dictionary: cannot write " << argv[2] << "\n";
        return 1;
    }
    std::cout << stats.rows << " rows (" << stats.alternates << " alternates), " << text.size()
              << " bytes, " << stats.skipped << " source lines skipped\n";
    return 0;
}
