#!/usr/bin/env bash
# scripts/check_install.sh <build tree>
# Installs into an empty prefix and fails unless the list of files is complete, the programs without a window run from
# there, the one as a file manager would start it, and a desktop that knows the prefix knows a model by its name and by its
# contents.
set -euo pipefail

prefix=$(mktemp -d)
trap 'rm -rf "$prefix"' EXIT
cmake --install "$1" --prefix "$prefix" >/dev/null

expected="bin/relievo
bin/relievo-batch
bin/relievo-picture
share/applications/relievo.desktop
share/doc/relievo/README.md
share/doc/relievo/changelog.gz
share/doc/relievo/copyright
share/icons/hicolor/scalable/apps/relievo.svg
share/man/man1/relievo-batch.1.gz
share/man/man1/relievo-picture.1.gz
share/man/man1/relievo.1.gz
share/metainfo/io.github.relievo.relievo.metainfo.xml
share/mime/packages/relievo.xml
share/thumbnailers/relievo.thumbnailer
share/relievo/samples/README.md
$(find docs -type f -printf 'share/doc/relievo/%p\n')
$(cd samples && find . -type f ! -name README.md -printf 'share/relievo/samples/%P\n')"
diff <(sort <<<"$expected") <(cd "$prefix" && find . -type f -printf '%P\n' | sort)

"$prefix/bin/relievo-batch" --version
"$prefix/bin/relievo-batch" "$prefix/share/relievo/samples/coffee.grid" --iterations 0 --quiet

# What its entry says for a size, an output and an input. The colours of the project are those of its photograph.
thumbnailer=$(sed -n 's/^Exec=//p' "$prefix/share/thumbnailers/relievo.thumbnailer")
thumbnailer=${thumbnailer//%s/128}
thumbnailer=${thumbnailer/\%o/$prefix\/small.png}
draw_small() { # model, the fewest colours
  rm -f "$prefix/small.png"
  env -u DISPLAY sh -c "$prefix/bin/${thumbnailer/\%i/$1}"
  [[ $(identify -format "%m %wx%h" "$prefix/small.png") == "PNG 128x128" ]]
  [[ $(identify -format %k "$prefix/small.png") -ge $2 ]]
}
draw_small samples/cat.grid 2
draw_small tests/packaging/photographed.relievo 1000

export XDG_DATA_HOME=$prefix/home XDG_DATA_DIRS=$prefix/share:/usr/share
update-mime-database "$prefix/share/mime"
# With many constraints their end lies beyond the bytes that a desktop looks at.
many=$prefix/many_constraints
awk 'NR == 2 { n = $2; print "0\t300"; next } NR == 3 { for (i = n; i < 300; ++i) print } { print }' samples/coffee.grid >"$many"
for model in samples/*.grid "$many"; do
  for name in model.grid nameless; do
    cp "$model" "$prefix/$name"
    type=$(gio info --attributes standard::content-type "$prefix/$name" | sed -n 's/.*content-type: //p')
    if [[ $type != application/x-relievo-grid ]]; then
      echo "$model, called $name, is taken for $type"
      exit 1
    fi
  done
done

for name in cup.relievo nameless_project; do
  cp tests/fuzz/corpus/project_file/golden "$prefix/$name"
  type=$(gio info --attributes standard::content-type "$prefix/$name" | sed -n 's/.*content-type: //p')
  if [[ $type != application/x-relievo-project ]]; then
    echo "a project called $name is taken for $type"
    exit 1
  fi
done
