#include "ReportOutputFile.h"

#include "FileSystem.h"
#include "ReportError.h"

#include <cerrno>
#include <cstring>

namespace qi {

ReportOutputFile::ReportOutputFile(const std::string& path) : path_(path)
{
    file_ = std::fopen(nativePath(path).c_str(), "wb");
    if (!file_)
        throw cannotWrite(path_, std::strerror(errno));
}

ReportOutputFile::~ReportOutputFile()
{
    if (file_)
        std::fclose(file_);
}

void ReportOutputFile::write(std::string_view bytes)
{
    if (!bytes.empty() && std::fwrite(bytes.data(), 1, bytes.size(), file_) != bytes.size())
        throw cannotWrite(path_, std::strerror(errno));
}

void ReportOutputFile::close()
{
    std::FILE* f = file_;
    file_ = nullptr;
    const bool flushed = std::fflush(f) == 0;
    const int flushError = errno;
    if (std::fclose(f) != 0 || !flushed)
        throw cannotWrite(path_, std::strerror(flushed ? errno : flushError));
}

} // namespace qi
