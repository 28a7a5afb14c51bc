// The rules of the npm projects in this folder. Each hands over its own copy of typescript-eslint.
export const rules = (tseslint, parserOptions) =>
  tseslint.config(
    { ignores: ['dist', '**/*.{js,mjs}'] },
    ...tseslint.configs.strictTypeChecked,
    ...tseslint.configs.stylisticTypeChecked,
    { languageOptions: { parserOptions } },
    {
      rules: {
        curly: ['error', 'multi-line'],
        '@typescript-eslint/restrict-template-expressions': ['error', { allowNumber: true }],
      },
    },
  );
