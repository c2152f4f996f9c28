// Tests files as streams.
#include "foundation/urOS/File.h"
#include "foundation/urOS/AtomicFile.h"
#include "foundation/urOS/OStream.h"
#include "foundation/urOS/tests/FileTest.h"

namespace urOS {
namespace {

TEST_F(Files, WriteFromTheStartReadSeekAndAppend) {
    constexpr bool namesAreBytes = sizeof(fs::path::value_type) == 1;  // then a name need not be UTF-8
    std::string const name = path(namesAreBytes ? "caf\xC3\xA9 \xFF" : "caf\xC3\xA9");
    put(name, "something longer that has to go");
    File file;
    ASSERT_TRUE(file.open(wide(name), static_cast<OpenMode>(9)).ok());
    EXPECT_TRUE(file.write("0123456789", 10).ok());
    ASSERT_TRUE(file.open(wide(name), openWrite | openAppend).ok());
    EXPECT_TRUE(file.write("ab", 2).ok());
    EXPECT_TRUE(file.close().ok());
    EXPECT_EQ(textOf(name), "0123456789ab");

    ASSERT_TRUE(file.open(wide(name), openRead).ok());
    std::uint64_t size = 0;
    EXPECT_TRUE(file.size(size).ok());
    EXPECT_EQ(size, 12U);
    EXPECT_TRUE(file.seek(9).ok());
    urString::CString rest;
    EXPECT_TRUE(file.readAll(rest).ok());
    EXPECT_EQ(rest, "9ab");
    EXPECT_TRUE(file.write("x", 1).isError());
}

TEST_F(Files, OpeningReportsTheReasonOfAFailure) {
    File file;
    urUtil::Error const error = file.open(wide(path("none/none")), openRead);
    EXPECT_EQ(error.code(), ENOENT);
    EXPECT_NE(error.message().find("none/none"), std::string_view::npos);
    std::size_t done = 7;
    EXPECT_TRUE(file.read(&done, 1, &done).isError());
    EXPECT_EQ(done, 0U);
    EXPECT_TRUE(file.close().ok());
    put(path("other"), "kept");
    urString::IString const withNul = wide(path("other") + '\0' + "x");
    EXPECT_EQ(file.open(withNul, openForWriting).code(), EINVAL);
    EXPECT_EQ(AtomicFile().open(withNul).code(), EINVAL);
    EXPECT_EQ(textOf(path("other")), "kept");
}

TEST_F(Files, KnowTheirPlaceAndCloseOnlyTheirOwnDescriptors) {
    std::string const text(40000, 'x');  // more than one read takes
    put(path("long"), text);
    File file;
    ASSERT_TRUE(file.open(wide(path("long")), openRead | openWrite).ok());
    std::uint64_t position = 7;
    EXPECT_TRUE(file.tell(position).ok());
    EXPECT_EQ(position, 0U);
    urString::CString all;
    EXPECT_TRUE(file.readAll(all).ok());
    EXPECT_EQ(all.view(), text);
    EXPECT_TRUE(file.tell(position).ok());
    EXPECT_EQ(position, text.size());
    EXPECT_TRUE(file.sync().ok());
    File borrower;
    EXPECT_TRUE(borrower.attach(file.descriptor(), File::Ownership::borrowed).ok());
    EXPECT_TRUE(borrower.close().ok());
    EXPECT_FALSE(borrower.isOpen());
    EXPECT_TRUE(file.seek(1).ok()) << "still open";
    EXPECT_TRUE(borrower.attach(file.descriptor(), File::Ownership::own).ok());
    EXPECT_TRUE(borrower.close().ok());
    for (urUtil::Error const& error : {file.seek(0), file.tell(position), file.size(position), file.sync()}) {
        EXPECT_EQ(error.code(), EBADF) << "closed by the other";
    }
    EXPECT_EQ(file.close().code(), EBADF);
    ASSERT_TRUE(borrower.open(wide(path("long")), openRead).ok()) << "its own, after a borrowed one";
    int const descriptor = borrower.descriptor();
    EXPECT_TRUE(borrower.close().ok());
    EXPECT_TRUE(borrower.attach(descriptor, File::Ownership::borrowed).ok());
    EXPECT_EQ(borrower.seek(0).code(), EBADF) << "closed";
}

TEST_F(Files, TextPassesThroughTheBufferInOrder) {
    std::string expected;
    File file;
    ASSERT_TRUE(file.open(wide(path("text")), openForWriting).ok());
    {
        OStream out(file);
        for (int i = 0; i < 3000; ++i) {
            out.print("%d", i);
            out.put(',');
            out.write(i == 1000 ? std::string(10000, 'x') : "yz");
            expected += std::to_string(i) + "," + (i == 1000 ? std::string(10000, 'x') : "yz");
        }
    }
    EXPECT_EQ(textOf(path("text")), expected);
}

#if defined(__linux__)

TEST_F(Files, TheFirstErrorOfADeviceStays) {
    File device;
    ASSERT_TRUE(device.open("/dev/full", openWrite).ok());
    OStream full(device);
    full.put('x');
    EXPECT_TRUE(full.error().ok());
    EXPECT_EQ(full.flush().code(), ENOSPC);
    EXPECT_EQ(full.flush().code(), ENOSPC);
}

#endif

}  // namespace
}  // namespace urOS
