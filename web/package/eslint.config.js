import tseslint from 'typescript-eslint';

export default tseslint.config(
  { ignores: ['dist', 'tests/page', '**/*.mjs', 'eslint.config.js'] },
  ...tseslint.configs.strictTypeChecked,
  ...tseslint.configs.stylisticTypeChecked,
  { languageOptions: { parserOptions: { projectService: true, tsconfigRootDir: import.meta.dirname } } },
);
