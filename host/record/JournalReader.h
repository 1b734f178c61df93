#pragma once

#include "host/record/Journal.h"

#include <istream>
#include <stdexcept>
#include <vector>

namespace vant::host {

/// A journal cannot be read; the text is the line and the reason.
class JournalError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The records of a journal. A last line that is not complete, which a run that was killed leaves, is left
/// out. Throws JournalError for any other line that is not a record, and if there is no record at all.
std::vector<Record> ReadJournal(std::istream& in);

} // namespace vant::host
