#ifndef NYXCONFIG_REFERENCEMD5_H
#define NYXCONFIG_REFERENCEMD5_H

#include <openssl/evp.h>

#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>

namespace NyxTest
{

/// MD5 of another make.
class ReferenceMd5
{
public:
    ReferenceMd5() { EXPECT_EQ(EVP_DigestInit_ex(m_context.get(), EVP_md5(), nullptr), 1); }

    void Add(const std::string& text) { EXPECT_EQ(EVP_DigestUpdate(m_context.get(), text.data(), text.size()), 1); }

    /// 32 lower-case hexadecimal digits. Ends the computation.
    std::string Hex()
    {
        std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
        unsigned size = 0;
        EXPECT_EQ(EVP_DigestFinal_ex(m_context.get(), digest.data(), &size), 1);
        std::string hex;
        for (unsigned i = 0; i < size; ++i) {
            hex += "0123456789abcdef"[digest[i] >> 4];
            hex += "0123456789abcdef"[digest[i] & 15];
        }
        return hex;
    }

private:
    struct Free
    {
        void operator()(EVP_MD_CTX* context) const { EVP_MD_CTX_free(context); }
    };
    std::unique_ptr<EVP_MD_CTX, Free> m_context{EVP_MD_CTX_new()};
};

inline std::string ReferenceMd5Hex(const std::string& text)
{
    ReferenceMd5 md5;
    md5.Add(text);
    return md5.Hex();
}

} // namespace NyxTest

#endif
