#include <unistd.h>

#include "xml/file_io.h"

namespace qm::io {

void SyncFile(std::FILE* file) { ::fsync(::fileno(file)); }

}  // namespace qm::io
