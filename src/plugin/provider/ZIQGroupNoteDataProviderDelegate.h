// What a screen showing a note (the note card, the editor) hears from its data provider when the
// note changes on the service. Both operations are optional: the defaults do nothing.
//
// A provider holds its delegate weakly: it keeps only a weak reference to a token that lives
// exactly as long as the delegate object, so a destroyed delegate is never called, whether or
// not it is a QObject.
#pragma once

#include "plugin/model/ZIQGroupNoteInfo.h"

#include <memory>

class ZIQGroupNoteDataProvider;

class ZIQGroupNoteDataProviderDelegate
{
public:
    ZIQGroupNoteDataProviderDelegate() = default;
    // A copy is a different delegate with a lifetime of its own.
    ZIQGroupNoteDataProviderDelegate(const ZIQGroupNoteDataProviderDelegate &) { }
    ZIQGroupNoteDataProviderDelegate &operator=(const ZIQGroupNoteDataProviderDelegate &) { return *this; }
    virtual ~ZIQGroupNoteDataProviderDelegate();

    /// The note was fetched anew from the service after a remote or local change.
    virtual void dataProviderDidUpdateGroupNoteInfo(
        ZIQGroupNoteDataProvider *provider, const ZIQGroupNoteInfoPtr &info);
    /// The note message's "show_line_num" was modified.
    virtual void dataProviderDidUpdateShowLineNum(ZIQGroupNoteDataProvider *provider, qint64 oldValue, qint64 newValue);

private:
    friend class ZIQGroupNoteDataProvider;
    std::shared_ptr<const bool> m_lifetime = std::make_shared<const bool>(true);
};
