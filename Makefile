# Entry points; everything else lives in scripts/.
.PHONY: run test bench setup package
run:
	scripts/run
test:
	scripts/test
bench:
	scripts/bench
setup:
	scripts/setup
package:
	scripts/package
