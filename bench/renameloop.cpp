// The baseline of the command-line benchmark: a bare loop of renameat2 calls that appends a suffix before
// the extension of every entry of one folder, with nothing else around it. Usage: bench_renameloop FOLDER SUFFIX

#include <dirent.h>
#include <fcntl.h>
#include <stdio.h>
#include <unistd.h>

#include <string>
#include <vector>

int main(int argc, char *argv[])
{
    if (argc != 3) {
        fprintf(stderr, "usage: bench_renameloop FOLDER SUFFIX\n");
        return 2;
    }
    DIR *folder = opendir(argv[1]);
    if (!folder)
        return 2;
    std::vector<std::string> names;
    while (const dirent *entry = readdir(folder)) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..")
            names.push_back(name);
    }
    const int descriptor = dirfd(folder);
    int failures = 0;
    for (const std::string &name : names) {
        const std::size_t dot = name.rfind('.');
        const std::string target = dot == std::string::npos || dot == 0
                                       ? name + argv[2]
                                       : name.substr(0, dot) + argv[2] + name.substr(dot);
        if (renameat2(descriptor, name.c_str(), descriptor, target.c_str(), RENAME_NOREPLACE) != 0)
            ++failures;
    }
    closedir(folder);
    return failures == 0 ? 0 : 1;
}
