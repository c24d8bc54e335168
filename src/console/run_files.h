#pragma once

#include <memory>
#include <set>
#include <string>

#include "console/session.h"
#include "engine/hash_list.h"
#include "operation/run_report.h"
#include "platform/content_hash.h"

namespace coffrelune::console {

/// The files that a run writes besides its copies: the report that --rapport names, and the list of
/// hashes. What the user named by mistake is not written over: only a file that is empty, or that
/// the program has made for the same purpose.
class RunReport final : public RunRecord {
  public:
    /// Nothing is written without --rapport.
    RunReport(Session& session, const Arguments& arguments);

    /// False, with the reason said, when it cannot be written.
    bool open();
    void add(const FileRecord& file) override;
    /// The last line, which says that the report is whole. `end`: how the process ends; at least
    /// with errors when something of the report is missing, which has been said.
    ExitStatus close(ExitStatus end);

    /// Files of copies that a verification found to be others than their originals.
    const std::set<std::string>& suspects() const { return suspects_; }

  private:
    bool wanted() const { return !arguments_.report.empty(); }
    void write(const std::string& line);
    void flush();

    Session& session_;
    const Arguments& arguments_;
    bool asJson_;
    std::string path_;
    std::unique_ptr<OutputFile> file_;
    std::string buffer_;
    Status failure_;
    std::set<std::string> suspects_;
};

/// The list that --empreintes or --ecrire-empreintes names.
class HashFile {
  public:
    HashFile(Session& session, const Arguments& arguments);

    bool wanted() const { return !path_.empty(); }
    /// False, with the reason said, when the list cannot be used: there must be one to check
    /// against, and what is there must be one to be brought up to date.
    bool read();
    HashList& list() { return list_; }
    /// False, with the reason said, when the list could not be written; the one before stays.
    bool write();

  private:
    Session& session_;
    bool checks_;
    std::string path_;
    HashList list_;
};

}  // namespace coffrelune::console
