#ifndef NYXCONFIG_DFPERRORHANDLER_H
#define NYXCONFIG_DFPERRORHANDLER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "nyxconfig_export.h"

namespace KvDeviceFootprint
{

/**
 * What an error is about. Records have a type from 0 to 9; any other value, negative ones included, is refused where
 * a record or a skip flag is concerned.
 */
enum TDfpErrorType : std::int32_t
{
    eDfpErrorTypeInconsistentDfp = 0,  ///< The content of a footprint contradicts itself.
    eDfpErrorTypeMemoryManagement = 1, ///< Memory could not be had.
    eDfpErrorTypeIO = 2,               ///< Reading or writing failed.
    eDfpErrorTypeCrypt = 3,            ///< A cipher or key failed.
    eDfpErrorTypeParser = 4,           ///< A text could not be parsed.
    eDfpErrorTypeAlgorithmic = 5,      ///< A computation failed.
    eDfpErrorTypeInternal = 6,         ///< The library was used wrongly from within.
    eDfpErrorTypeDataValidation = 7,   ///< A value is not valid.
    eDfpErrorTypeAutoSkip = 8,         ///< Something was passed over without being asked to.
    eDfpErrorTypeInfo = 9,             ///< No error: a remark, reported without a type text.
    eDfpErrorTypeCount = 10,           ///< The number of record types; in searches, any type.
    eDfpErrorTypeUndefined = 11        ///< Stands for every value without a text of its own.
};

/**
 * One error record: all errors of one type, with the text of the first.
 *
 * The whole channel of this header has no lock: it is for one thread at a time.
 */
class NYXCONFIG_EXPORT CDfpError
{
public:
    CDfpError(TDfpErrorType type, const std::string& text);
    virtual ~CDfpError();

    CDfpError(const CDfpError&) = delete;
    CDfpError& operator=(const CDfpError&) = delete;

    /**
     * The record in words: "<count> <type text>: <text>", the count and its blank only from 2 upward, and for
     * eDfpErrorTypeInfo the text alone.
     * @param text receives the words; its former content is lost.
     */
    void GetErrorText(std::string& text) const;

    TDfpErrorType m_type;
    std::string m_text;   ///< Text of the first error that was folded into this record.
    std::int32_t m_count; ///< Number of errors in this record, 1 at first; stays at its greatest value once there.
};

/// The records of one context, in the order in which they came. Owns them.
class NYXCONFIG_EXPORT CDfpErrorList
{
public:
    CDfpErrorList();
    virtual ~CDfpErrorList();

    CDfpErrorList(const CDfpErrorList&) = delete;
    CDfpErrorList& operator=(const CDfpErrorList&) = delete;

    /**
     * Appends a record.
     * @param error taken over and deleted by this list; null is stored and counted too. If the call throws for want
     *              of memory, the caller keeps it.
     */
    void Insert(CDfpError* error);

    /// Deletes all records.
    void Clear();

    std::size_t Count() const;

private:
    friend class CDfpErrorContext;

    std::vector<std::unique_ptr<CDfpError>> m_errors;
};

/**
 * A scope that collects errors: from its construction to its closing it receives what is reported to the handler,
 * unless a newer context stands above it.
 *
 * Contexts are meant to be closed in the reverse order of their construction. One that is destroyed out of order
 * takes itself off the handler's stack, and its records are lost.
 */
class NYXCONFIG_EXPORT CDfpErrorContext
{
public:
    /// Becomes the handler's current context; makes the handler if there is none.
    CDfpErrorContext();

    /**
     * The same, and stores the formatted text, if it is not empty, as a record of type eDfpErrorTypeInfo.
     * @param format as for printf, always formatted as in the "C" locale; null gives an empty text.
     */
    explicit CDfpErrorContext(const char* format, ...) __attribute__((format(printf, 2, 3)));

    /// Closes the context if that has not happened.
    virtual ~CDfpErrorContext();

    CDfpErrorContext(const CDfpErrorContext&) = delete;
    CDfpErrorContext& operator=(const CDfpErrorContext&) = delete;

    /**
     * Stores a record, or folds it: if any context on the handler's stack holds a record of its type, that one's count
     * is raised instead. A type that this context skips, or one that is no record type, is dropped.
     * @return true if this context now owns the record; on false it is still the caller's.
     */
    bool StoreError(CDfpError* error);
    /// The same with a record made for the purpose.
    void StoreError(TDfpErrorType type, const std::string& text);

    /// @return true if this context holds a record.
    bool ErrorsOccurred() const;

    /**
     * @param type the type to look for, or eDfpErrorTypeCount for any.
     * @return the first such record of this context or null; the context keeps it.
     */
    CDfpError* FindStoredError(TDfpErrorType type) const;
    /// The same as FindStoredError.
    CDfpError* GetFirstStoredError(TDfpErrorType type) const;

    /// Deletes the records of a type, or with eDfpErrorTypeCount all.
    void Clear(TDfpErrorType type);

    /// Drops errors of this type from now on. No record type: no effect.
    void Skip(TDfpErrorType type);
    /// Stores errors of this type again. No record type: no effect.
    void DontSkip(TDfpErrorType type);
    /// @return true if errors of this type are dropped, which they always are if it is no record type.
    bool Skips(TDfpErrorType type) const;
    /// Stores errors of all types again.
    void ClearSkipList();

    /**
     * Takes over the records of another context, which is empty afterwards. A record of a type that this context skips
     * is deleted. One with a record of its type on the handler's stack is folded into that.
     *
     * While `other` is still on the stack, as it is on closing, a record without a twin further out meets itself there
     * and is deleted: it reaches this context only as a raised count of a record that an outer context already holds.
     */
    void MoveErrors(CDfpErrorContext& other);

    /**
     * Appends one line per record, "> " and its text, to a file.
     * @return true only if there was nothing to write, in which case no file is touched. False says nothing about
     *         success: it is the result of a complete write as well.
     */
    bool AppendToFile(const std::string& path) const;

    /**
     * Takes this context off the handler's stack and moves its records to the context below, or deletes them if there
     * is none.
     * @return true if there were no records; false also if the context is already closed or is not the current one, in
     *         which case nothing changes.
     */
    bool CloseErrorContext();
    /**
     * The same with a choice.
     * @param discardErrors true deletes the records, and the result is always true.
     * @return as above with false.
     */
    bool CloseErrorContext(bool discardErrors);

private:
    bool m_bClosed;
    CDfpErrorList m_errors;
    std::array<bool, eDfpErrorTypeCount> m_skip;
};

/**
 * The process's error channel: a stack of contexts, the first of which is the global one, the last the current one.
 *
 * The handler deletes only the global contexts that it made itself. A caller's context that is still on the stack when
 * the handler is cleared or destroyed is closed and taken off; it stays the caller's to destroy, whenever that is.
 */
class NYXCONFIG_EXPORT CDfpErrorHandler
{
public:
    /// @return the one handler, made with a global context at the first call; it lives until Destroy.
    static CDfpErrorHandler* Instance();
    /// Deletes the handler, if there is one. The next Instance makes a new one.
    static void Destroy();

    /// Closes all contexts as Clear does.
    virtual ~CDfpErrorHandler();

    CDfpErrorHandler(const CDfpErrorHandler&) = delete;
    CDfpErrorHandler& operator=(const CDfpErrorHandler&) = delete;

    /**
     * Stores an error in the current context; with none it goes nowhere.
     * @param format as for printf, always formatted as in the "C" locale; null gives an empty text. A text that can
     *               not be formatted or for which there is no memory is replaced by "<Error text to long>".
     */
    void AddError(TDfpErrorType type, const char* format, ...) __attribute__((format(printf, 3, 4)));
    /// The same with a ready text, in which a percent sign has no meaning.
    void AddError(TDfpErrorType type, const std::string& text);

    /**
     * Makes a context the current one. Contexts do this themselves.
     * @param context stays the caller's; null is allowed, and errors go nowhere while it is the current one.
     */
    void AddCurrentErrorContext(CDfpErrorContext* context);
    /// Takes the context off the stack if it is the current one; otherwise no effect.
    void RemoveCurrentErrorContext(CDfpErrorContext* context);

    /// Makes a global context if the stack is empty. It lives until it leaves the stack by Clear, or until Destroy.
    void AddGlobalErrorContext();

    /// @return the first context or null if there is none.
    CDfpErrorContext* GetGlobalErrorContext() const;
    /// @return the last context or null if there is none.
    CDfpErrorContext* GetCurrentErrorContext() const;
    /// @return the context below the current one or null if there is none.
    CDfpErrorContext* GetParentContextOfCurrent() const;

    /// Deletes all records of the global context.
    void ClearGlobalErrorContext();

    /// Closes all contexts from the top down. Errors then go nowhere until there is a context again.
    void Clear();

    /**
     * @param type the type to look for, or eDfpErrorTypeCount for any.
     * @return the first such record of the contexts, from the global one upward, or null; its context keeps it.
     */
    CDfpError* FindStoredError(TDfpErrorType type) const;

    /**
     * The words of the first record of a type in the global context.
     * @param text receives them, or is emptied if there is none.
     * @param type the type to look for, or eDfpErrorTypeCount for any.
     */
    void GetFirstGlobalError(std::string& text, TDfpErrorType type) const;

    /**
     * The type in words.
     * @param text receives them: empty for eDfpErrorTypeInfo, "Undefined error type" for what is no record type.
     */
    static void ErrorTypeToString(TDfpErrorType type, std::string& text);

private:
    friend class CDfpErrorContext;

    CDfpErrorHandler();

    std::unique_ptr<CDfpErrorContext> TakeOwnContext(const CDfpErrorContext* context);
    void Forget(const CDfpErrorContext* context);

    std::vector<CDfpErrorContext*> m_contexts;
    std::vector<std::unique_ptr<CDfpErrorContext>> m_ownContexts; ///< Those made here, on the stack or no longer.

    static CDfpErrorHandler* s_pTheOneInstance;
};

} // namespace KvDeviceFootprint

#endif
