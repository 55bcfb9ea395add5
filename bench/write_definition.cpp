// Writes the benchmarks' definition of N conditions to a file, for measuring brixq on it:
// write_definition N FILE
#include <cstdlib>
#include <fstream>
#include <iostream>

#include "bench/bench_support.h"

int main(int argc, char** argv) {
  if (argc != 3) {
    std::cerr << "usage: write_definition CONDITIONS FILE\n";
    return 2;
  }
  std::ofstream out(argv[2], std::ios::binary);
  out << brix::bench::BuildDefinitionQuery(std::atoi(argv[1]))->SaveXMLDef();
  return out ? 0 : 1;
}
