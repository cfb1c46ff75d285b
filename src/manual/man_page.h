#pragma once

#include "manual/help_text.h"

#include <functional>
#include <string>
#include <vector>

namespace kavro {

/// A part of a manual page that stands in a document.
struct PageSection {
    const char* Title;    ///< as "EXIT STATUS"; nothing: the document's own headings
    const char* Document; ///< file in docs
    const char* Heading;  ///< the section of the document; nothing: all of it
};

/// The head of a manual page.
struct PageHead {
    std::string Name;
    int Section = 1;
    std::string Summary; ///< behind the name
    std::string Version;
};

/// Text of a document, by its file name.
using Documents = std::function<std::string(const std::string& name)>;

/// Page of a program: what its help says, and then `sections`.
std::string ProgramPage(const ProgramHelp& help, const std::string& version,
                        const std::vector<PageSection>& sections, const Documents& documents);

/// Page made of documents alone.
std::string DocumentPage(const PageHead& head, const std::vector<PageSection>& sections,
                         const Documents& documents);

} // namespace kavro
