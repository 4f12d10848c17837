// Text and processing instructions.
#pragma once

#include <RynCommon/RyNode.h>
#include <RynCommon/RyString.h>

namespace RynCommon {

/// A run of text.
class RYNCOMMON_API RyTextNode : public RyNode {
public:
    static unsigned int getStaticTypeID() { return 0x92151179u; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;
    RyNodeType getNodeType() const override { return TEXT_NODE; }
    bool isText() const override { return true; }

    UnicodeString getData() const { return data_.toString(); }
    void setData(const UnicodeString& data) { data_ = RyCompactText(data); }
    /// Number of UTF-16 units.
    int getLength() const { return data_.length(); }
    /// Replaces the text of `text`, whose buffer is used again.
    void copyTextTo(UnicodeString& text) const { data_.copyTo(text); }
    /// The text's units as `buffer` shows them: the quick way to read many.
    std::u16string_view readText(RyTextBuffer& buffer) const { return buffer.read(data_); }
    const RyCompactText& getCompactData() const { return data_; }

    RyName getNodeName() const override { return RN_hash_text; }
    RyValue getNodeValue() const override;
    /// Takes the value's text form.
    void setNodeValue(const RyValue& value) override;
    UnicodeString getText() const override { return getData(); }
    void setText(const UnicodeString& text) override { setData(text); }
    RyPtr<RyNode> cloneNode(bool deep) const override;

protected:
    friend class ExactNodes;
    RyTextNode(RyDocument* owner, const UnicodeString& data) : RyNode(owner), data_(data) {}
    RyTextNode(RyDocument* owner, RyCompactText data) : RyNode(owner), data_(std::move(data)) {}

private:
    RyCompactText data_;
};

/// A processing instruction, held as its whole content: target, white space, data.
class RYNCOMMON_API RyPINode : public RyNode {
public:
    RyPINode(RyDocument* owner, const UnicodeString& content);
    ~RyPINode() override;

    static unsigned int getStaticTypeID() { return 0x1A6FA3CFu; }
    unsigned int getTypeID() const override;
    bool isA(unsigned int id) const override;
    UnicodeString getTypeName() const override;
    RyNodeType getNodeType() const override { return PROCESSING_INSTRUCTION_NODE; }

    RyName getNodeName() const override;
    /// The whole content.
    RyValue getNodeValue() const override;
    void setNodeValue(const RyValue& value) override;
    UnicodeString getText() const override { return content_; }
    void setText(const UnicodeString& text) override { content_ = text; }
    RyPtr<RyNode> cloneNode(bool deep) const override;

private:
    UnicodeString content_;
};

}  // namespace RynCommon
