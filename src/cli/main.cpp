#include "cli/app.h"

int main(int argc, char** argv) { return qm::cli::Main(argc, argv); }
