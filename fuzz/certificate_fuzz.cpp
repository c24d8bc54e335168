// The certificate of a copy. The first text is a file as it is; the others are what one is made of.

#include "engine/certificate.h"
#include "feed.h"

namespace coffrelune::fuzz {
namespace {

bool hasLine(const std::string& text, const std::string& line) {
    return ('\n' + text).find('\n' + line + '\n') != std::string::npos;
}

// Any file: what is understood is understood again, and completeness is never made up.
void readAny(const std::string& text) {
    const std::optional<Certificate> found = readCertificate(text);
    if (!found) return;
    expect(text.starts_with("Coffrelune 1\n"), "a kind that is known");
    expect(text.ends_with("\nfin") || text.ends_with("\nfin\n"), "whole to its last line");
    expect(!found->complete || hasLine(text, "etat=complete"), "complete only when it says so");
    expect(readCertificate(certificateText(*found)) == found, "written and read again, the same");
}

void makeOne(Feed& feed) {
    Certificate made;
    made.original = 'C' + feed.text();
    made.volume = feed.text();
    made.pathOnVolume = feed.text();
    made.copy = feed.text();
    made.complete = feed.text().size() % 2 == 1;
    while (!feed.ends()) {
        const std::string text = feed.text();
        if (made.mounts.size() < made.exclusions.directories.size()) {
            made.mounts.push_back(text);
        } else {
            made.exclusions.directories.push_back(text);
        }
        made.exclusions.mode = static_cast<ExclusionMode>(text.size());
    }
    const std::string text = certificateText(made);
    expect(readCertificate(text) == made, "a certificate comes back as it was");
    for (const std::size_t size : cutsOf(text)) {
        if (size + 1 >= text.size()) continue;  // the very last line end says nothing
        expect(!readCertificate(text.substr(0, size)), "a certificate that is cut proves nothing");
    }
    expect(!readCertificate(text + "etat=complete\n"), "nothing follows the end");
    if (!made.complete) expect(!hasLine(text, "etat=complete"), "no name passes for a state");
}

}  // namespace
}  // namespace coffrelune::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    coffrelune::fuzz::Feed feed(bytes, size);
    coffrelune::fuzz::readAny(feed.text());
    coffrelune::fuzz::makeOne(feed);
    return 0;
}
