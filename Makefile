# Short names for what CMake, Ninja and CTest do; `make help` lists them. The build itself stands in CMakeLists.txt.
PREFIX ?= /usr/local
FUZZ_SECONDS ?= 60
JOBS ?= $(shell nproc)
SOURCES = find qel tavo plugins hosts tests bench fuzz -name '*.h' -o -name '*.cpp'
PICTURED = trajectories inverse_kinematics retargeting
CTEST = ctest --output-on-failure -j2 --test-dir

.DEFAULT_GOAL := release
.PHONY: release asan demo test bench fuzz format format-check readme docs-pictures install dependencies help

release asan: ## Build it: with optimisation (plain `make`), or with the sanitizers
	@cmake --preset $@ >/dev/null
	@ninja -C build/$@ -j$(JOBS)

demo: dependencies ## A walk through the command-line host, on a real motion clip
	@$(MAKE) --no-print-directory release
	@scripts/demo.sh

# One recipe, in order: the last thing on the screen is CTest's own summary.
test: dependencies ## Everything: format, both builds, and their tests
	@$(MAKE) --no-print-directory format-check release
	@$(CTEST) build/release
	@$(MAKE) --no-print-directory asan
	@$(CTEST) build/asan

bench: release ## Run the benchmarks
	@for bench in build/release/bin/bench_*; do if [ -x $$bench ]; then $$bench || exit 1; fi; done

fuzz: ## Run each fuzz target for FUZZ_SECONDS (60)
	@scripts/install-dependencies.sh --with-fuzz
	@cmake --preset fuzz >/dev/null
	@ninja -C build/fuzz -j$(JOBS)
	@scripts/fuzz.sh build/fuzz $(FUZZ_SECONDS)

format: ## Format the sources
	@$(SOURCES) | xargs clang-format -i

format-check: ## Fail if a source is not formatted
	@$(SOURCES) | xargs clang-format --dry-run -Werror

readme: release ## Write what the host really prints into its pages: sessions, and the references of commands and scripts
	@scripts/check_readme_session.py --host build/release/bin/tavo --update
	@for page in host lua $(PICTURED); do \
	    scripts/check_readme_session.py --host build/release/bin/tavo --page docs/$$page.md --update || exit 1; done
	@build/release/bin/tavo commands --markdown >docs/commands.md
	@build/release/bin/tavo run --reference >docs/lua_reference.md

docs-pictures: release ## Draw the pictures of the pages that have some, by their own commands
	@for page in $(PICTURED); do scripts/docs_pictures.sh build/release/bin/tavo $$page || exit 1; done

install: release ## Install under PREFIX (/usr/local)
	@cmake --install build/release --prefix $(PREFIX)

dependencies: ## Install the Debian packages the build needs; nothing if they are there
	@scripts/install-dependencies.sh

help: ## List these targets
	@sed -n 's/^\([a-z -]*\):.*## \(.*\)/\1|\2/p' Makefile | while IFS='|' read -r target text; do \
	    printf '  make %-14s %s\n' "$$target" "$$text"; done
