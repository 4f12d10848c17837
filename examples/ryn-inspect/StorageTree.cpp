// The storages of a compound file as a list.
#include "StorageTree.h"

#include <algorithm>
#include <cstdio>
#include <set>

using namespace RynCommon;

namespace {

std::string showName(const UnicodeString& name) {
    std::string text;
    for (std::int32_t i = 0; i < name.length(); i = name.moveIndex32(i, 1)) {
        const UChar32 c = name.char32At(i);
        if (c < 0x20 || (c >= 0x7F && c < 0xA0)) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", static_cast<unsigned>(c));
            text += escape;
        } else {
            UnicodeString(c).toUTF8String(text);
        }
    }
    return text;
}

// Walks by a stack of its own: a sibling tree may be as deep as it has entries.
class TreeWalk {
public:
    explicit TreeWalk(const OleCompFile& file) : file_(file) {}

    std::vector<StorageEntry> run() {
        const OleDirInfo* const root = file_.getDirInfo(0);
        if (root == nullptr) return {};
        open(root->getChildID(), 0, std::string());
        while (!stack_.empty()) {
            const Step step = stack_.back();
            stack_.pop_back();
            visit(step);
        }
        return std::move(entries_);
    }

private:
    struct Step {
        std::int32_t id;
        std::size_t depth;
        std::string folder;  // path of the storage, with its "/"
        bool isOpen;         // what lies left of the entry has been walked
    };

    void open(std::int32_t id, std::size_t depth, const std::string& folder) {
        if (file_.getDirInfo(id) == nullptr || !seen_.insert(id).second) return;
        stack_.push_back({id, depth, folder, false});
    }

    // Left siblings first, then the entry, then what it holds, then right siblings.
    void visit(const Step& step) {
        const OleDirInfo& info = *file_.getDirInfo(step.id);
        if (!step.isOpen) {
            stack_.push_back({step.id, step.depth, step.folder, true});
            open(info.getLeftSiblingID(), step.depth, step.folder);
            return;
        }
        const std::string name = showName(info.getName());
        entries_.push_back({step.id, step.depth, name, step.folder + name});
        open(info.getRightSiblingID(), step.depth, step.folder);
        if (info.isStorage()) open(info.getChildID(), step.depth + 1, step.folder + name + "/");
    }

    const OleCompFile& file_;
    std::vector<Step> stack_;
    std::set<std::int32_t> seen_;
    std::vector<StorageEntry> entries_;
};

}  // namespace

std::vector<StorageEntry> listStorages(const OleCompFile& file) {
    return TreeWalk(file).run();
}
