# Chronolet Plus: every target installs what it is missing (Debian packages, with
# sudo when not root), configures CMake in its own build folder and runs.

JOBS        ?= $(shell nproc 2>/dev/null || echo 2)
FUZZ_TIME   ?= 60
FUZZ_MAX_LEN ?= 4096
SUDO        := $(shell [ "$$(id -u)" = 0 ] || echo sudo)
CMAKE_FLAGS ?=

BASE_PKGS     := cmake make g++ libgtest-dev qt6-base-dev qt6-svg-dev libxss-dev xvfb xauth fonts-dejavu-core poppler-utils xclip dbus-daemon \
                 dpkg-dev desktop-file-utils appstream
BENCH_PKGS    := $(BASE_PKGS) libbenchmark-dev
FUZZ_PKGS     := cmake make clang libclang-rt-14-dev
BENCH_CLI_PKGS := $(BENCH_PKGS) hyperfine timewarrior gawk
FORMAT_PKGS   := clang-format
COVERAGE_PKGS := $(BASE_PKGS) gcovr

SANITIZER_ENV := ASAN_OPTIONS=detect_leaks=1:abort_on_error=1:strict_string_checks=1 \
                 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1

# $(call ensure,packages): install the packages that dpkg doesn't list as installed.
define ensure
	@missing=""; for p in $(1); do \
	  dpkg-query -W -f='$${Status}' $$p 2>/dev/null | grep -q "ok installed" || missing="$$missing $$p"; \
	done; \
	if [ -n "$$missing" ]; then \
	  echo "Installing:$$missing"; \
	  $(SUDO) apt-get update -qq && \
	  DEBIAN_FRONTEND=noninteractive $(SUDO) apt-get install -y -qq --no-install-recommends $$missing; \
	fi
endef

.PHONY: all run screenshots test sanitize bench bench-cli install package fuzz format coverage clean

all: test

# Builds and starts the application; make returns when it quits. Without a
# display the application says so in one line and fails.
run:
	$(call ensure,$(BASE_PKGS))
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS)
	cmake --build build -j$(JOBS) --target chronolet-plus
	./build/chronolet-plus

# Renders the windows to PNG files under docs/screenshots, on a virtual display.
screenshots:
	$(call ensure,$(BASE_PKGS))
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS)
	cmake --build build -j$(JOBS) --target tk_screenshots
	xvfb-run -a -s "-screen 0 1280x800x24" ./build/tk_screenshots docs/screenshots

# Installs a Release build under PREFIX: make install PREFIX=$$HOME/.local, or with sudo for
# the default /usr/local.
PREFIX ?= /usr/local
install:
	$(call ensure,$(BASE_PKGS))
	cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DTK_BUILD_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build build-release -j$(JOBS)
	cmake --install build-release --prefix "$(PREFIX)"

# The Debian package of a Release build, written to build-release.
package:
	$(call ensure,$(BASE_PKGS))
	cmake -S . -B build-release -DCMAKE_BUILD_TYPE=Release -DTK_BUILD_TESTS=OFF $(CMAKE_FLAGS)
	cmake --build build-release -j$(JOBS)
	cd build-release && cpack -G DEB

test:
	$(call ensure,$(BASE_PKGS))
	cmake -S . -B build -DCMAKE_BUILD_TYPE=Debug $(CMAKE_FLAGS)
	cmake --build build -j$(JOBS)
	ctest --test-dir build --output-on-failure -j$(JOBS)

sanitize:
	$(call ensure,$(BASE_PKGS))
	cmake -S . -B build-sanitize -DCMAKE_BUILD_TYPE=Debug -DTK_SANITIZE=ON $(CMAKE_FLAGS)
	cmake --build build-sanitize -j$(JOBS)
	$(SANITIZER_ENV) ctest --test-dir build-sanitize --output-on-failure -j$(JOBS)

bench:
	$(call ensure,$(BENCH_PKGS))
	cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTK_BUILD_TESTS=OFF -DTK_BUILD_BENCH=ON $(CMAKE_FLAGS)
	cmake --build build-bench -j$(JOBS)
	@for t in $$(tr ';' ' ' < build-bench/bench_targets.txt); do \
	  echo "== $$t"; build-bench/bench/$$t || exit 1; \
	done
	@echo "== start-up of the application (Xvfb)"
	xvfb-run -a -s "-screen 0 1280x800x24" bench/tkStartupBench.sh build-bench/chronolet-plus

# The command line against a peer command-line tracker on the same 10,000- and 100,000-entry
# histories (hyperfine).
bench-cli:
	$(call ensure,$(BENCH_CLI_PKGS))
	cmake -S . -B build-bench -DCMAKE_BUILD_TYPE=Release -DTK_BUILD_TESTS=OFF -DTK_BUILD_BENCH=ON $(CMAKE_FLAGS)
	cmake --build build-bench -j$(JOBS) --target chronolet
	bench/tkCliBench.sh build-bench/chronolet

fuzz:
	$(call ensure,$(FUZZ_PKGS))
	cmake -S . -B build-fuzz -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
	  -DTK_BUILD_TESTS=OFF -DTK_BUILD_FUZZ=ON $(CMAKE_FLAGS)
	cmake --build build-fuzz -j$(JOBS)
	@for t in $$(tr ';' ' ' < build-fuzz/fuzz_targets.txt); do \
	  echo "== $$t ($(FUZZ_TIME) s)"; mkdir -p build-fuzz/corpus/$$t; \
	  seeds=fuzz/corpus/$${t#fuzz_}; [ -d $$seeds ] || seeds=; \
	  build-fuzz/fuzz/$$t -max_total_time=$(FUZZ_TIME) -max_len=$(FUZZ_MAX_LEN) -print_final_stats=1 \
	    build-fuzz/corpus/$$t $$seeds > build-fuzz/$$t.log 2>&1; status=$$?; \
	  tail -n 12 build-fuzz/$$t.log; [ $$status = 0 ] || exit $$status; \
	done

format:
	$(call ensure,$(FORMAT_PKGS))
	git ls-files -co --exclude-standard -- '*.h' '*.cpp' | xargs -r clang-format -i

coverage:
	$(call ensure,$(COVERAGE_PKGS))
	cmake -S . -B build-coverage -DCMAKE_BUILD_TYPE=Debug -DTK_COVERAGE=ON $(CMAKE_FLAGS)
	cmake --build build-coverage -j$(JOBS)
	find build-coverage -name '*.gcda' -delete
	ctest --test-dir build-coverage -j$(JOBS) --output-on-failure
	gcovr -r . build-coverage --filter '(foundation|records|timers|timesheet|preferences|shell|platform)/' \
	  --exclude-unreachable-branches --exclude-throw-branches --json-summary build-coverage/coverage.json \
	  --txt build-coverage/coverage.txt --print-summary
	python3 tools/coverage_by_folder.py build-coverage/coverage.json

clean:
	rm -rf build build-sanitize build-bench build-fuzz build-coverage
