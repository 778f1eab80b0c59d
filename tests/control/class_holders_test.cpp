// Which files hold a class of a name: a small project is asked file by file, a larger
// one through an index of every class name; both must answer what asking every file
// in project order answers, whatever the letter case of the name.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "common/constants.h"
#include "common/text.h"
#include "control/class_holders.h"
#include "support/recording_sink.h"
#include "support/scratch.h"

using namespace kestrel;

namespace {

std::vector<FilePtr> AskedInTurn(const clsAllFiles& files, const std::u16string& name) {
    std::vector<FilePtr> holders;
    for (const FilePtr& file : files.Files())
        if (file->GetClass(name)) holders.push_back(file);
    return holders;
}

}  // namespace

TEST(ClassHolders, AnswerAsAskingEveryFileDoesForSmallAndLargeProjects) {
    test::ScratchDir dir;
    test::RecordedFiles<test::RecordingSink> project;
    const std::vector<std::u16string> names{u"Shared", u"SHARED", u"Only0", u"Only7", u"Missing"};
    ClassHolders holders;
    for (int i = 0; i < 24; ++i) {
        std::string text = "class Shared\n{\npublic:\n  int v;\n};\nclass Only" + std::to_string(i) + "\n{\n  int w;\n};\n";
        const std::string path = dir / ("f" + std::to_string(i) + ".h");
        test::WriteFileBytes(path, i % 3 == 0 ? "int none;\n" : text);
        project.files->Add(FromUtf8(path), FILETYPE_DEFINITION);
        holders.Invalidate();  // the project gained classes
        for (const std::u16string& name : names)
            ASSERT_EQ(holders.Of(*project.files, name), AskedInTurn(*project.files, name)) << i << " files";
    }
    // Files leave: the index drops them, and below the threshold the files are asked.
    while (project.files->count() > 2) {
        const FilePtr leaving = *project.files->Files().begin();
        holders.Drop(leaving);
        project.files->Remove(leaving->FileName());
        for (const std::u16string& name : names) {
            std::vector<FilePtr> answer;
            for (const FilePtr& file : holders.Of(*project.files, name))
                if (file->GetClass(name)) answer.push_back(file);
            ASSERT_EQ(answer, AskedInTurn(*project.files, name)) << project.files->count() << " files";
        }
    }
}
