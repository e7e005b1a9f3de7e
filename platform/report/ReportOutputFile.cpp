#include "ReportOutputFile.h"

#include "ReportError.h"

namespace qi {

ReportOutputFile::ReportOutputFile(const std::string& path)
{
    try {
        file_ = std::make_unique<AtomicFile>(path);
    } catch (const FileError& e) {
        throw ReportError(e.what());
    }
}

ReportOutputFile::~ReportOutputFile() = default;

void ReportOutputFile::write(std::string_view bytes)
{
    try {
        file_->write(bytes);
    } catch (const FileError& e) {
        throw ReportError(e.what());
    }
}

void ReportOutputFile::close()
{
    try {
        file_->commit();
    } catch (const FileError& e) {
        throw ReportError(e.what());
    }
}

} // namespace qi
