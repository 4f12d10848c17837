// Fuzz target of lazy loading: walking and pruning a tree that is read on the way gives what the
// same steps give in a tree that was read at once, and the same error, if there is one.
//
// The input is a document. The steps are its bytes behind the last "<?walk ", a processing
// instruction that may end it; all of its bytes when there is none.
#include <RynCommon/RyDocument.h>

#include <optional>
#include <sstream>
#include <vector>

#include "fuzz/ByteFeed.h"
#include "fuzz/Chunks.h"
#include "fuzz/Require.h"
#include "fuzz/TreeText.h"
#include "fuzz/XmlInput.h"

using namespace RynCommon;

namespace {

constexpr std::size_t MAX_STEPS = 2'000;

/// A document that reads from a stream of its own.
class Source {
public:
    Source(const XmlInput& input, std::vector<std::size_t> chunks, bool lazy)
        : buffer_(input.bytes, std::move(chunks)), in_(&buffer_), document(new RyDocument) {
        document->setPullMode(lazy);
        prepareParser(*document->getParser(), input.features);
        try {
            document->getParser()->setInput(in_, input.encoding, UnicodeString(FUZZ_BASE));
            document->load();
        } catch (const RyError& e) {
            error = errorText(e);
        }
    }

    /// Does what may read on. An error ends the reading, so that the second time it cannot fail.
    template <class Step>
    void run(Step step) {
        try {
            step();
        } catch (const RyError& e) {
            require(error.empty(), "a second error", error, errorText(e));
            error = errorText(e);
            step();
        }
    }

private:
    ChunkSource buffer_;
    std::istream in_;

public:
    RyPtr<RyDocument> document;
    std::string error;
};

class Walk {
public:
    Walk(Source& eager, Source& lazy)
        : eager_(eager), lazy_(lazy), here_{eager.document.get(), lazy.document.get()} {}

    void step(std::uint8_t choice) {
        switch (choice % 11) {
            case 0:
                go([](const RyNode& node) { return node.getFirstChild(); });
                break;
            case 1:
            case 2:
                go([](const RyNode& node) { return node.getNextSibling(); });
                break;
            case 3:
                go([](const RyNode& node) { return node.getParentNode(); });
                break;
            case 4:
                go([](const RyNode& node) { return node.getLastChild(); });
                break;
            case 5:
                go([](const RyNode& node) { return node.getPreviousSibling(); });
                break;
            case 6:
                checkQueries();
                break;
            case 7:
                lazy_.run([&] { lazy_.document->loadNextNode(); });
                break;
            case 8:
                remove();
                break;
            case 9:
                go([this](const RyNode& node) { return removedFrom(node); });
                break;
            default:
                go([](const RyNode& node) {
                    return static_cast<RyNode*>(node.getOwnerDocument());
                });
                break;
        }
    }

    void finish() {
        checkTree({eager_.document.get(), lazy_.document.get()});
        for (const auto& [eager, lazy] : removed_) checkTree({eager.get(), lazy.get()});
        requireEqual("errors differ", eager_.error, lazy_.error);
        require(lazy_.document->getLastLoadingNode() == nullptr, "still loading at the end");
    }

private:
    struct Place {
        RyNode* eager;
        RyNode* lazy;
    };

    /// Moves to where `way` leads from here, if anywhere.
    template <class Way>
    void go(Way way) {
        Place next{way(*here_.eager), nullptr};
        lazy_.run([&] { next.lazy = way(*here_.lazy); });
        require((next.eager == nullptr) == (next.lazy == nullptr), "a way leads nowhere in one");
        if (next.eager == nullptr) return;
        here_ = next;
        requireEqual("nodes differ", describeNode(*here_.eager), describeNode(*here_.lazy));
    }

    void checkQueries() {
        bool hasChildren = false;
        lazy_.run([&] { hasChildren = here_.lazy->hasChildNodes(); });
        require(here_.eager->hasChildNodes() == hasChildren, "children differ");
        UnicodeString text;
        lazy_.run([&] { text = here_.lazy->getInnerText(); });
        requireEqual("inner texts differ", toUtf8(here_.eager->getInnerText()), toUtf8(text));
    }

    /// Both hold what they remove, which may still be loading.
    void remove() {
        RyNode* const parent = here_.eager->getParentNodeFast();
        if (parent == nullptr) return;
        RyNode* const lazyParent = here_.lazy->getParentNodeFast();
        require(lazyParent != nullptr, "a parent is lost");
        removed_.push_back({parent->removeChild(here_.eager), {}});
        lazy_.run([&] { removed_.back().lazy = lazyParent->removeChild(here_.lazy); });
        here_ = {parent, lazyParent};
    }

    /// The first of the removed nodes for the eager tree and for the lazy one.
    RyNode* removedFrom(const RyNode& node) const {
        if (removed_.empty()) return nullptr;
        const Removed& first = removed_.front();
        const RyNode* const document = eager_.document.get();
        const bool isEager = &node == document || node.getOwnerDocument() == document;
        return isEager ? first.eager.get() : first.lazy.get();
    }

    void checkTree(Place root) {
        std::string text;
        lazy_.run([&] { text = describeContent(*root.lazy); });
        requireEqual("trees differ", describeContent(*root.eager), text);
    }

    struct Removed {
        RyPtr<RyNode> eager;
        RyPtr<RyNode> lazy;
    };

    Source& eager_;
    Source& lazy_;
    Place here_;
    std::vector<Removed> removed_;
};

std::string_view stepsOf(std::string_view bytes) {
    constexpr std::string_view mark = "<?walk ";
    const std::size_t at = bytes.rfind(mark);
    if (at != std::string_view::npos) bytes.remove_prefix(at + mark.size());
    return bytes.substr(0, MAX_STEPS);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const XmlInput input(data, size);
    Source eager(input, {input.bytes.size() + 1}, false);
    Source lazy(input, chunkSizes(input.bytes), true);
    Walk walk(eager, lazy);
    for (ByteFeed feed(stepsOf(input.bytes)); !feed.isEmpty();) walk.step(feed.take());
    walk.finish();
    return 0;
}
