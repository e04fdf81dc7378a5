// Contract of Files (file system).
#include "tests/contract/Contract.hpp"

namespace vantor::contract {

class FilesContract : public Contract {};
INSTANTIATE_CONTRACT(FilesContract);

TEST_P(FilesContract, DoesWhatTheTableSays) {
    std::unique_ptr<OutputFile> open;
    using W = const Words&;
    ExpectTable("contract/files",
                {{"write", [&](W w) { return files->WriteAll(w.at(1), w.at(2)), ""; }},
                 {"append", [&](W w) { return files->Append(w.at(1), w.at(2)), ""; }},
                 {"create", [&](W w) { return open = files->Create(w.at(1)), ""; }},
                 {"to-open", [&](W w) { return open->Write(w.at(1)), ""; }},
                 {"read", [&](W w) { return files->ReadAll(w.at(1)); }},
                 {"start", [&](W w) { return files->ReadStart(w.at(1), std::stoul(w.at(2))); }},
                 {"size", [&](W w) { return Row(files->Size(w.at(1))); }},
                 {"exists", [&](W w) { return FromBool(files->Exists(w.at(1))); }},
                 {"delete", [&](W w) { return files->Delete(w.at(1)), ""; }},
                 {"folders", [&](W w) { return files->CreateFolders(w.at(1)), ""; }},
                 {"same", [&](W w) { return FromBool(files->SameFile(w.at(1), w.at(2))); }},
                 {"takes",  // the number of the error depends on the system
                  [&](W w) {
                      return Row(Raised([&] { files->WriteAll(w.at(1), "x"); }).Number() == 0,
                                 Raised([&] { files->Create(w.at(1)); }).Number() == 0);
                  }},
                 {"list",
                  [&](W w) {
                      std::string names;
                      for (const std::string& name : files->List(w.at(1), w.at(2), {}))
                          names += name + "|";
                      return names;
                  }}},
                folder);
}

}  // namespace vantor::contract
