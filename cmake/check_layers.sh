#!/bin/sh
# Fails when a source includes a folder of a layer that its own layer does not link.
#   cd src && check_layers.sh layers.txt
# Each row of the table is a folder of src/ and the folders that it may include: "flash: flash
# dialogs settings ...". A folder that the table does not name holds a program, which may include
# every layer.
set -eu
table=$1

find . -name '*.cpp' -o -name '*.hpp' | sed 's,^\./,,' | sort | xargs grep -H '^#include "' |
    awk -v table="$table" '
        BEGIN {
            while ((getline row < table) > 0) {
                colon = index(row, ":")
                folder = substr(row, 1, colon - 1)
                known[folder] = 1
                count = split(substr(row, colon + 1), folders, " ")
                for (i = 1; i <= count; ++i) allowed[folder, folders[i]] = 1
            }
        }
        function FolderOf(path) { sub(/\/[^\/]*$/, "", path); return path }
        {
            colon = index($0, ":")
            file = substr($0, 1, colon - 1)
            split($0, quoted, "\"")
            from = FolderOf(file)
            to = FolderOf(quoted[2])
            ++checked
            if (from in known ? (from, to) in allowed : to in known || to == from) next
            print "src/" file ": includes " quoted[2] ", but " from " does not stand on " to
            wrong = 1
        }
        END {
            if (checked == 0) { print "No include was checked: is the table empty?"; exit 1 }
            exit wrong
        }'
