#include "pages/lists/file_page.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/shown_page.h"

namespace zrl {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class FilePageTest : public testing::Test, public test::ShownPage<FilePage> {};

TEST_F(FilePageTest, AFileNameIsStoredOnceInLowerCase) {
  FilePage& page = shown();
  for (const char* text : {" Invoice.EXE", "invoice.exe ", "   "}) {
    page.Text1.user_type(text);
    page.addfiles.user_click();
  }
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM files where files='invoice.exe'",
                                      "INSERT INTO files (files) VALUES ('invoice.exe')",
                                      "DELETE FROM files where files='invoice.exe'",
                                      "INSERT INTO files (files) VALUES ('invoice.exe')"));
  EXPECT_THAT(items(page.files), ElementsAre("invoice.exe"));
  EXPECT_THAT(items(page.extension), IsEmpty());
  EXPECT_EQ(page.Text1.text(), "");
  EXPECT_TRUE(page.addfiles.enabled());
}

// The database takes only letters of ASCII for their capitals, so an entry of a file is also removed as it
// is.
TEST_F(FilePageTest, LettersBeyondAsciiAreLowerCasedToo) {
  insert("files", "files", {"grüße.exe", "MÜLL.exe"});
  FilePage& page = shown();
  page.Text1.user_type("RechnungÄ.EXE");
  page.addfiles.user_click();
  EXPECT_EQ(page.Text1.text(), "rechnungä.exe");
  EXPECT_THAT(items(page.files), ElementsAre("grüße.exe", "MÜLL.exe", "rechnungä.exe"));
  page.Text1.user_type("GRÜßE.exe");
  page.deleteit.user_click();
  page.files.user_choose(0);
  page.deleteit.user_click();
  EXPECT_THAT(items(page.files), ElementsAre("rechnungä.exe"));
}

TEST_F(FilePageTest, AnExtensionWithADotIsOnlyDeleted) {
  insert("extension", "extension", {".exe", "tar.gz", "com"});
  FilePage& page = shown();
  for (const char* text : {" EXE ", ".Exe", "tar.gz", "exe.", " "}) {
    page.Text1.user_type(text);
    page.addextension.user_click();
  }
  EXPECT_THAT(activity(), ElementsAre("DELETE FROM extension where extension='exe'",
                                      "INSERT INTO extension (extension) VALUES ('exe')",
                                      "DELETE FROM extension where extension='.exe'",
                                      "DELETE FROM extension where extension='tar.gz'",
                                      "DELETE FROM extension where extension='exe.'"));
  EXPECT_THAT(items(page.extension), ElementsAre("com", "exe"));
  EXPECT_TRUE(page.addextension.enabled());
}

TEST_F(FilePageTest, RemovingTakesTheUntrimmedTextOffBothLists) {
  insert("files", "files", {"com", "readme.com"});
  insert("extension", "extension", {"com", "exe"});
  FilePage& page = shown();
  page.Text1.user_type("COM ");
  page.deleteit.user_click();
  page.Text1.user_type("COM");
  page.deleteit.user_click();
  EXPECT_THAT(
      activity(),
      ElementsAre("DELETE FROM files where files='com '", "DELETE FROM extension where extension='com '",
                  "DELETE FROM files where files='com'", "DELETE FROM extension where extension='com'"));
  EXPECT_THAT(items(page.files), ElementsAre("readme.com"));
  EXPECT_THAT(items(page.extension), ElementsAre("exe"));
  page.extension.user_choose(0);
  EXPECT_EQ(page.Text1.text(), "exe");
}

TEST_F(FilePageTest, EachSwitchHasItsKey) {
  FilePage& page = shown();
  for (CheckBox* box : {&page.checkfiles, &page.checkfilesstream, &page.checkextension}) {
    box->user_click();
    EXPECT_EQ(option(box->name()), "1");
    page.freshit.user_click();
    EXPECT_TRUE(box->checked());
  }
}

TEST_F(FilePageTest, AnUpdateReadsTheAddFileWithoutEndingAndNothingRaisesAFlag) {
  put_download("addextension", "pif\n");
  put_download("addextension.txt", "wrong\n");
  put_download("delfiles.txt", "old.exe\nboth.exe\n");
  put_download("addfiles.txt", "both.exe\n");
  insert("files", "files", {"old.exe"});
  FilePage& page = shown();
  console.components().remove(Downloader::program_id);
  page.remoteupdate.user_click();
  EXPECT_THAT(items(page.files), ElementsAre("both.exe"));
  EXPECT_THAT(items(page.extension), ElementsAre("pif"));
  EXPECT_EQ(activity().size(), 5U);  // the downloader, four files and no flag

  forget_activity();
  EXPECT_EQ(dialog_of(page.leftim), "File List: files.txt");
  EXPECT_EQ(dialog_of(page.rightim), "Extension List: extension.txt");
  EXPECT_THAT(activity(), IsEmpty());
}

}  // namespace
}  // namespace zrl
