namespace plemora {}
