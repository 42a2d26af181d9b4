#include <io.h>

#include "xml/file_io.h"

namespace qm::io {

void SyncFile(std::FILE* file) { ::_commit(::_fileno(file)); }

}  // namespace qm::io
