// SHA-256, piece by piece.
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <string>

struct evp_md_ctx_st;

namespace korvane {

class Sha256 {
  public:
    Sha256();
    ~Sha256();
    Sha256(Sha256&&) noexcept;
    Sha256& operator=(Sha256&&) noexcept;

    void add(std::span<const std::byte> bytes);
    /// 64 hexadecimal digits in lower case of all that was added. Ends it.
    std::string finish();

  private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };
    std::unique_ptr<evp_md_ctx_st, Free> context_;
};

}  // namespace korvane
