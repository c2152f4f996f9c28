// Sets options of libcurl handles.
#pragma once

#include <curl/curl.h>

#include <new>

#include "tools/nxhost/TransferEvent.h"

namespace nxhost {

[[noreturn]] inline void refuse(char const* why) { throw Failed{TransferError::refused, why}; }

/// Throws `Failed` if libcurl rejects the value.
template <class Value>
void setOption(CURL* handle, CURLoption option, Value value) {
    CURLcode const result = curl_easy_setopt(handle, option, value);
    if (result == CURLE_OUT_OF_MEMORY) throw std::bad_alloc();
    if (result != CURLE_OK) refuse(curl_easy_strerror(result));
}

}  // namespace nxhost
