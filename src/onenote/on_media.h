// Images, printouts, embedded files, recordings, ink, the data holders they share, and the
// content of later OneNote versions that the binding keeps without modelling.
#pragma once

#include "onenote/on_types.h"

namespace qm::ON {

struct Image : Element<Image>, PageObjectAttributes {
    static constexpr std::u16string_view kName = u"Image";
    using PageObjectAttributes::position;  // not the header's caller-defined position
    String format;
    OptInt xpsFileIndex;
    OptInt originalDocumentNumber;
    OptInt originalPageNumber;
    Bool isPrintOut{false};
    Bool backgroundImage{false};
    String hyperlink;
    String alt;

    xml::ChildList<Meta> meta{this};
    xml::ChildList<TagChoice> tags{this};
    std::shared_ptr<File> file;
    std::shared_ptr<Data> data;
    std::shared_ptr<CallbackID> callbackID;
    std::shared_ptr<OCRData> ocrData;
};

struct OCRData : Element<OCRData> {
    static constexpr std::u16string_view kName = u"OCRData";
    String lang;
    std::shared_ptr<OCRText> ocrText;
    xml::ChildList<OCRToken> ocrTokens{this};
};

struct OCRText : Element<OCRText> {
    static constexpr std::u16string_view kName = u"OCRText";
    std::u16string text;
};

struct OCRToken : Element<OCRToken> {
    static constexpr std::u16string_view kName = u"OCRToken";
    OptInt startPos;
    String region;
    String line;
    OptFloat x;
    OptFloat y;
    OptFloat width;
    OptFloat height;
};

struct InsertedFileAttributes {
    String pathSource;
    String pathCache;
    String preferredName;
};

// An embedded file.
struct InsertedFile : Element<InsertedFile>, PageObjectAttributes, InsertedFileAttributes {
    static constexpr std::u16string_view kName = u"InsertedFile";
    using PageObjectAttributes::position;  // not the header's caller-defined position
    xml::ChildList<Meta> meta{this};
    xml::ChildList<TagChoice> tags{this};
};

// An embedded recording.
struct MediaFile : Element<MediaFile>, PageObjectAttributes, InsertedFileAttributes {
    static constexpr std::u16string_view kName = u"MediaFile";
    using PageObjectAttributes::position;  // not the header's caller-defined position
    xml::ChildList<Meta> meta{this};
    xml::ChildList<TagChoice> tags{this};
    std::shared_ptr<MediaReference> mediaReference;
};

struct InkDrawing : Element<InkDrawing>, PageObjectAttributes {
    static constexpr std::u16string_view kName = u"InkDrawing";
    using PageObjectAttributes::position;  // not the header's caller-defined position
    Bool isUnclassified{false};
    OptFloat inkOriginX;
    OptFloat inkOriginY;

    xml::ChildList<Meta> meta{this};
    xml::ChildList<TagChoice> tags{this};
    std::shared_ptr<ShapeInfo> shapeInfo;
    std::shared_ptr<File> file;
    std::shared_ptr<Data> data;
    std::shared_ptr<CallbackID> callbackID;
};

struct ShapeInfo : Element<ShapeInfo> {
    static constexpr std::u16string_view kName = u"ShapeInfo";
    Bool isLine{false};
    xml::ChildList<AnchorPoint> anchorPoints{this};
};

struct AnchorPoint : Element<AnchorPoint> {
    static constexpr std::u16string_view kName = u"AnchorPoint";
    OptFloat x;
    OptFloat y;
};

// A handwritten word inside a paragraph.
struct InkWord : Element<InkWord> {
    static constexpr std::u16string_view kName = u"InkWord";
    String recognizedText;
    Selection selected = NoSelection();
    OptFloat x;
    OptFloat y;
    OptFloat width;
    OptFloat height;
    String style;
    OptFloat inkOriginX;
    OptFloat inkOriginY;

    std::shared_ptr<File> file;
    std::shared_ptr<Data> data;
    std::shared_ptr<CallbackID> callbackID;
    std::shared_ptr<Space> space;
    std::shared_ptr<EndOfLine> endOfLine;
};

struct InkParagraph : Element<InkParagraph> {
    static constexpr std::u16string_view kName = u"InkParagraph";
    OptFloat x;
    OptFloat y;
    OptFloat width;
    OptFloat height;
    xml::ChildList<InkWord> inkWords{this};
};

struct Space : Element<Space> {
    static constexpr std::u16string_view kName = u"Space";
};

struct EndOfLine : Element<EndOfLine> {
    static constexpr std::u16string_view kName = u"EndOfLine";
};

struct File : Element<File> {
    static constexpr std::u16string_view kName = u"File";
    String path;
};

// Inline binary data, base64 text kept as read.
struct Data : Element<Data> {
    static constexpr std::u16string_view kName = u"Data";
    std::u16string text;
};

struct CallbackID : Element<CallbackID> {
    static constexpr std::u16string_view kName = u"CallbackID";
    String callbackID;
};

// Content of a later OneNote version: nothing of it is modelled; its attributes and children
// are all kept in `unknown` and written back as they came.
struct FutureObject : Element<FutureObject> {
    static constexpr std::u16string_view kName = u"FutureObject";
};

}  // namespace qm::ON
