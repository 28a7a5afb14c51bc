import { fileURLToPath } from "node:url";

import tseslint from "typescript-eslint";

export default tseslint.config(
    { ignores: ["node_modules"] },
    {
        files: ["src/**/*.ts"],
        extends: [tseslint.configs.strictTypeChecked],
        languageOptions: { parserOptions: { project: ["./tsconfig.json", "./tsconfig.worker.json"], tsconfigRootDir: fileURLToPath(new URL(".", import.meta.url)) } },
        rules: {
            "@typescript-eslint/no-non-null-assertion": "off",
            "@typescript-eslint/no-unnecessary-type-parameters": "off",
            "@typescript-eslint/restrict-template-expressions": ["error", { allowNumber: true }],
        },
    },
);
