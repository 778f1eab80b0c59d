#include "project_host.h"

#include "control/node_keys.h"
#include "model/all_files.h"
#include "perf_common.h"

namespace kestrel::perf {

long long CountItems(TreeView& view) { return CountItems(*view.files()); }

long long CountItems(clsAllFiles& all) {
    long long items = 0;
    for (int32_t f = 1; f <= all.count(); ++f) {
        FilePtr file = all.item(f);
        for (const ClassPtr& c : file->Classes()) items += c->CountFunc() + c->CountVars();
    }
    return items;
}

std::vector<std::string> WriteClassFiles(const std::string& folder, int files, int classesPerFile,
                                         int functionsPerClass) {
    std::vector<std::string> paths;
    for (int f = 0; f < files; ++f) {
        const std::string unit = "unit" + std::to_string(f);
        std::string header, source = "#include \"" + unit + ".h\"\n";
        for (int c = 0; c < classesPerFile; ++c) {
            const std::string cls = "Class" + std::to_string(f) + "_" + std::to_string(c);
            header += "class " + cls + " {\npublic:\n";
            for (int m = 0; m < functionsPerClass; ++m) {
                const std::string name = "Method" + std::to_string(m);
                if (m == functionsPerClass / 2) header += "private:\n";
                header += "    int " + name + "(int value, const char* label);\n";
                source += "int " + cls + "::" + name + "(int value, const char* label)\n{\n    return value;\n}\n";
            }
            header += "    int count_;\n};\n";
        }
        paths.push_back(folder + "/" + unit + ".h");
        WriteFile(paths.back(), header);
        paths.push_back(folder + "/" + unit + ".cpp");
        WriteFile(paths.back(), source);
    }
    return paths;
}

std::vector<NodeId> ClassNodes(MemoryTree& tree) {
    std::vector<NodeId> nodes;
    for (NodeId root = tree.FirstChild(kNoNode); root != kNoNode; root = tree.NextSibling(root))
        for (NodeId c = tree.FirstChild(root); c != kNoNode; c = tree.NextSibling(c))
            if (HasMarker(tree.Key(c), kClassMarker)) nodes.push_back(c);
    return nodes;
}

}  // namespace kestrel::perf
