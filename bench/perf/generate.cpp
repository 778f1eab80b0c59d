// kestrel_perf generate java|basic FOLDER FILES: writes FILES source files of the kind
// real projects hold (comments, strings, fields, procedures with bodies, nested
// classes) and prints their paths, one per line, for a benchmark corpus.
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <stdexcept>

#include "perf_common.h"
#include "perf_commands.h"

namespace kestrel::perf {

namespace {

std::string JavaFile(int n) {
    const std::string id = std::to_string(n);
    std::string s = "/*\n * Generated service " + id + ".\n * Licensed for benchmarking only.\n */\npackage org.example.bench" +
                    std::to_string(n % 17) + ";\n\nimport java.util.ArrayList;\nimport java.util.List;\nimport java.util.Map;\n\n";
    s += "/**\n * Keeps the orders of customer group " + id + ".\n */\npublic class OrderService" + id +
         " extends AbstractService implements Runnable {\n";
    s += "    private static final String NAME = \"service-" + id + " { not a block }\";\n";
    s += "    private final List<String> names = new ArrayList<>();\n    protected int count;\n    public long total = 0L;\n"
         "    private Map<String, Integer> index;\n\n";
    for (int m = 0; m < 12; ++m) {
        const std::string k = std::to_string(m);
        s += "    /**\n     * Computes step " + k + ".\n     * @param value the input\n     */\n";
        s += (m % 3 == 0 ? "    public " : m % 3 == 1 ? "    protected " : "    private ") + std::string("int compute") + k +
             "(int value, String label) {\n";
        s += "        int result = value * " + k + ";  // scaled\n        if (label.equals(\"{\")) {\n"
             "            result += label.length();\n        }\n        for (int i = 0; i < count; i++) {\n"
             "            result ^= i;\n        }\n        return result;\n    }\n\n";
    }
    s += "    @Override\n    public void run() {\n        count++;\n    }\n\n";
    s += "    static class Entry {\n        String key;\n        int weight;\n\n        Entry(String key, int weight) {\n"
         "            this.key = key;\n            this.weight = weight;\n        }\n    }\n}\n";
    return s;
}

std::string BasicFile(int n) {
    const std::string id = std::to_string(n);
    std::string s = "Attribute VB_Name = \"Module" + id + "\"\r\nOption Explicit\r\n\r\n' Generated module " + id +
                    " for benchmarking.\r\n";
    s += "Private mTotal As Long\r\nPublic CustomerName As String\r\nDim mCache(100) As Integer\r\n\r\n";
    for (int m = 0; m < 14; ++m) {
        const std::string k = std::to_string(m);
        if (m % 2 == 0) {
            s += "' Adds step " + k + " to the total.\r\nPublic Function Compute" + k +
                 "(ByVal value As Long, ByVal label As String) As Long\r\n";
            s += "    Dim result As Long\r\n    Dim i As Integer\r\n    result = value * " + k +
                 " ' scaled\r\n    If label = \"End Function\" Then\r\n        result = result + Len(label)\r\n    End If\r\n"
                 "    For i = 1 To 10\r\n        result = result Xor i\r\n    Next i\r\n    Compute" +
                 k + " = result\r\nEnd Function\r\n\r\n";
        } else {
            s += "Private Sub Reset" + k + "(Optional ByVal force As Boolean = False)\r\n    Dim n As Long\r\n"
                 "    If force Then Exit Sub\r\n    mTotal = 0\r\n    n = mTotal + " + k + "\r\nEnd Sub\r\n\r\n";
        }
    }
    return s;
}

}  // namespace

int Generate(const std::vector<std::string>& args) {
    if (args.size() != 3) throw std::runtime_error("usage: kestrel_perf generate java|basic FOLDER FILES");
    const bool java = args[0] == "java";
    if (!java && args[0] != "basic") throw std::runtime_error("the kind is java or basic");
    const int files = std::atoi(args[2].c_str());
    std::filesystem::create_directories(args[1]);
    for (int n = 0; n < files; ++n) {
        const std::string path =
            args[1] + "/" + (java ? "OrderService" + std::to_string(n) + ".java" : "Module" + std::to_string(n) + ".bas");
        WriteFile(path, java ? JavaFile(n) : BasicFile(n));
        std::cout << std::filesystem::absolute(path).lexically_normal().string() << "\n";
    }
    return 0;
}

}  // namespace kestrel::perf
